// SPDX-License-Identifier: Apache-2.0
//
// Builds AVC sequence parameter sets (ISO/IEC 14496-10, 7.3.2.1.1) field by field, for tests.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace android {

/// Writes bits, most significant first.
class SpsBits {
  public:
    /// The `count` lowest bits of `value`, at most 32.
    SpsBits& u(unsigned count, uint32_t value) {
        for (unsigned i = count; i > 0; --i) {
            mBits.push_back((value >> (i - 1) & 1) != 0);
        }
        return *this;
    }

    /// An unsigned Exp-Golomb code.
    SpsBits& ue(uint32_t value) {
        const uint64_t code = uint64_t{value} + 1;
        unsigned length = 0;
        while (code >> length > 1) {
            ++length;
        }
        u(length, 0);
        u(1, 1);
        return u(length, static_cast<uint32_t>(code - (uint64_t{1} << length)));
    }

    /// A signed Exp-Golomb code.
    SpsBits& se(int32_t value) {
        const int64_t wide = value;
        return ue(static_cast<uint32_t>(wide > 0 ? 2 * wide - 1 : -2 * wide));
    }

    /// The bytes, filled up with zeros.
    std::vector<uint8_t> bytes() const {
        std::vector<uint8_t> out((mBits.size() + 7) / 8);
        for (size_t i = 0; i < mBits.size(); ++i) {
            out[i / 8] = static_cast<uint8_t>(out[i / 8] | (mBits[i] ? 0x80 >> i % 8 : 0));
        }
        return out;
    }

  private:
    std::vector<bool> mBits;
};

/// A set's fields, at first those of a progressive 4:2:0 picture of 352x288 without cropping or
/// VUI.
struct SpsFields {
    uint32_t profile = 66;
    uint32_t level = 30;
    uint32_t id = 0;

    // Written when `chroma` is set: chroma_format_idc and what goes with it.
    std::optional<uint32_t> chroma;
    bool separatePlanes = false;
    std::function<void(SpsBits&)> scalingMatrix;

    std::function<void(SpsBits&)> pictureOrder = [](SpsBits& bits) { bits.ue(2); };
    uint32_t widthInMbs = 22;
    uint32_t heightInMapUnits = 18;
    bool frameMbsOnly = true;
    std::optional<std::array<uint32_t, 4>> crop;  // left, right, top, bottom
    std::function<void(SpsBits&)> vui;            // after vui_parameters_present_flag

    /// The NAL unit, with emulation-prevention bytes.
    std::vector<uint8_t> nal() const;
    /// The same without emulation-prevention bytes, as no stream may carry it.
    std::vector<uint8_t> unescapedNal() const;
};

}  // namespace android
