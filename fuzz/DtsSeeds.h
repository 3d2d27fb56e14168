// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/ByteWriter.h"

namespace avitest {

// Words that follow the header of a DTS extension substream (ETSI TS 102 114).
constexpr uint32_t kDtsLossless = 0x41A29547;
constexpr uint32_t kDtsExpress = 0x0A801921;
constexpr uint32_t kDtsCore = 0x02B09261;

// An extension substream of one presentation of one asset, 40 bytes of header and the word.
Bytes dtsSubstream(uint32_t word);
// The same with everything optional: time stamp, three presentations and assets, mixing, texts.
Bytes dtsFullSubstream(uint32_t word);
// A core frame of 96 bytes.
Bytes dtsCoreFrame();

}  // namespace avitest
