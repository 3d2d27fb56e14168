// SPDX-License-Identifier: Apache-2.0
#include "codec/DtsCodecData.h"

#include <algorithm>

#include "codec/DtsHeaders.h"
#include "codec/ReadSample.h"
#include "support/Log.h"

namespace android {

// A stream that does not show its frames within these chunks keeps what its stream format says.
constexpr size_t kMaxProbedSamples = 11;

void generateDtsCodecData(FileReader& reader, Track* track) {
    const size_t probed = std::min(track->mTable.size(), kMaxProbedSamples);
    for (size_t i = 0; i < probed; ++i) {
        sp<ABuffer> sample;
        if (readSample(reader, *track, i, &sample) != OK) continue;
        if (parseDtsMetaData(track->meta.get(), sample) != OK) continue;
        AVI_LOGD("%s(): parseDtsMetaData OK.", "generateDtsCodecData");
        return;
    }
}

}  // namespace android
