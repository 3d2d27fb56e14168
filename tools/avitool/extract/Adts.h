// SPDX-License-Identifier: Apache-2.0
// ADTS headers (ISO/IEC 13818-7) for raw AAC frames. Immutable values; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace avitool {

class AdtsHeaders {
  public:
    /** Headers for the stream whose `esds` this is; none when its configuration is missing or is
     * nothing that ADTS can express. */
    static std::optional<AdtsHeaders> fromEsds(const std::vector<uint8_t>& esds);

    /** The seven bytes before a frame; none for a frame longer than they can express. */
    std::optional<std::vector<uint8_t>> forFrame(size_t frameSize) const;

  private:
    AdtsHeaders() = default;

    uint8_t mProfile = 0;  // audio object type minus 1, up to 3
    uint8_t mRateIndex = 0;
    uint8_t mChannels = 0;  // channel configuration, up to 7
};

}  // namespace avitool
