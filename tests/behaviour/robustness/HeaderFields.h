// SPDX-License-Identifier: Apache-2.0
//
// Where the fields of a file's headers and index lie, so that tests can overwrite them one by one.
// Plain values.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/ByteWriter.h"

namespace avitest {

struct HeaderField {
    std::string name;   // "strh[1] + 20": the second strh, byte 20 of its payload
    size_t offset = 0;  // in the file
    size_t width = 4;   // 2 or 4 bytes

    uint32_t largest() const { return width == 2 ? 0xFFFF : 0xFFFFFFFF; }
};

// All fields of avih, strh, strf and vprp, all entries of idx1, and the id and the size of every
// chunk and list of a well-formed file, the lists' types included.
std::vector<HeaderField> headerFields(const Bytes& file);

// Overwrites the field with the low bytes of `value`, little-endian.
void overwrite(Bytes* file, const HeaderField& field, uint32_t value);

}  // namespace avitest
