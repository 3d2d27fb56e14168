// SPDX-License-Identifier: Apache-2.0
// Parameter sets of AVC and HEVC, from the records that stand in file headers to the start codes of
// a stream. Functions over bytes, without state; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace avitool {

enum class NalCodec { kAvc, kHevc };

/**
 * The parameter sets of a configuration record (ISO/IEC 14496-15: avcC, hvcC), each after a start
 * code of four bytes. Bytes that have start codes already stay as they are, without zeros at the
 * end. Of a record that is cut, the sets that are whole.
 */
std::vector<uint8_t> parameterSetStream(NalCodec codec, const std::vector<uint8_t>& record);

/** Whether a sequence parameter set comes before the first picture data in a sample with start
 * codes. */
bool beginsWithParameterSets(NalCodec codec, const uint8_t* data, size_t size);

}  // namespace avitool
