// SPDX-License-Identifier: Apache-2.0
// How the samples of a track become a file that players open: the file's extension, and what is put
// before, between and after the samples. Immutable; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/avitool/Report.h"

namespace avitool {

using Bytes = std::vector<uint8_t>;

class StreamForm {
  public:
    explicit StreamForm(const char* extension) : mExtension(extension) {}
    StreamForm(const StreamForm&) = delete;
    StreamForm& operator=(const StreamForm&) = delete;
    virtual ~StreamForm() = default;

    /** Of the file's name, without the dot. */
    const char* extension() const { return mExtension; }

    /** What the file begins with. `sample` is the first one; null and 0 when there is none. */
    virtual Bytes fileHeader(const uint8_t* /*sample*/, size_t /*size*/) const { return {}; }
    /** What comes before a sample of `size` bytes; none when such a sample cannot be in the
     * file. */
    virtual std::optional<Bytes> sampleHeader(size_t /*size*/) const { return Bytes(); }
    /** What replaces the first bytes of fileHeader once the size of all samples is known. */
    virtual Bytes finalHeader(uint64_t /*dataSize*/) const { return {}; }
    /** What follows the samples. */
    virtual Bytes fileEnd(uint64_t /*dataSize*/) const { return {}; }

  private:
    const char* const mExtension;
};

/** The form for a track of this format: ".bin", the samples alone, when the format is no known one
 * or lacks what a header needs. */
std::unique_ptr<StreamForm> makeStreamForm(const FormatEntries& format);

}  // namespace avitool
