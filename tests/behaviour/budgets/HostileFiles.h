// SPDX-License-Identifier: Apache-2.0
//
// Files made to keep a reader busy, to fill its memory or to flood its log, each form in any size.
// Plain functions.

#pragma once

#include <cstddef>
#include <ostream>
#include <vector>

#include "tests/support/ByteWriter.h"

namespace avitest {

struct HostileFile {
    const char* name;
    // A file of about `bytes` bytes, less where that many bytes of the form are not possible.
    Bytes (*make)(size_t bytes);
};

inline void PrintTo(const HostileFile& file, std::ostream* out) {
    *out << file.name;
}

// By what there is too much of: each list is a file of its own.
std::vector<HostileFile> hostileHeaders();   // streams, names, formats, tags
std::vector<HostileFile> hostileSegments();  // chunks and lists at the top level, padding
std::vector<HostileFile> hostileScans();     // chunks of movi lists without an index
std::vector<HostileFile> hostileIndexes();   // entries, and indexes that name one another
std::vector<HostileFile> hostileSamples();   // bytes that configuration and reading look at

// All of them.
std::vector<HostileFile> hostileFiles();

}  // namespace avitest
