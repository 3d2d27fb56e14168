// SPDX-License-Identifier: Apache-2.0
//
// Ownership of the framework's format objects.
#pragma once

#include <media/NdkMediaFormat.h>

#include <memory>

namespace android {

struct MediaFormatDeleter {
    void operator()(AMediaFormat* format) const { AMediaFormat_delete(format); }
};

using MediaFormatPtr = std::unique_ptr<AMediaFormat, MediaFormatDeleter>;

}  // namespace android
