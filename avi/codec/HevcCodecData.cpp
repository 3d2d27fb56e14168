// SPDX-License-Identifier: Apache-2.0
//
// Configuration of HEVC tracks from the parameter sets in front of their first picture.
#include "codec/HevcCodecData.h"

#include <media/stagefright/MediaErrors.h>

#include <algorithm>

#include "codec/HevcParameterSets.h"
#include "codec/ReadSample.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

bool hasConfig(AMediaFormat* meta) {
    void* data = nullptr;
    size_t size = 0;
    return AMediaFormat_getBuffer(meta, AMEDIAFORMAT_KEY_CSD_HEVC, &data, &size);
}

void logSequenceHeader(const sp<ABuffer>& sample, const HevcSequenceHeader& h) {
    constexpr size_t kPrefixSize = 4;
    AVI_LOGV("%s(): Whole Seq Hdr found @%u, VPS/SPS/PPS size %u/%u/%u", "generateHevcCodecData",
             static_cast<unsigned>(h.end), static_cast<unsigned>(h.sps - h.vps - kPrefixSize),
             static_cast<unsigned>(h.pps - h.sps - kPrefixSize),
             static_cast<unsigned>(h.end - h.pps - kPrefixSize));
    hexDump(sample->data() + h.vps, std::min(h.end, sample->size() - h.vps));
    AVI_LOGV("%s(): NAL start @offset %d.", "generateHevcCodecData", static_cast<int>(h.end));
}

}  // namespace

void generateHevcCodecData(const FileReader& reader, Track* track) {
    AMediaFormat* meta = track->meta.get();
    if (hasConfig(meta)) return;
    sp<ABuffer> sample;
    logFirstSample("generateHevcCodecData", *track);
    if (readSample(reader, *track, 0, &sample) != OK) {
        track->mBadTrack = true;
        fail("generateHevcCodecData", ERROR_IO, __LINE__);
        return;
    }
    HevcSequenceHeader header;
    if (!findHevcSequenceHeader(sample->data(), sample->size(), &header)) {
        AVI_LOGE("%s(): Found no sequence start! UNSUPPORTED HEVC!", "generateHevcCodecData");
        track->mBadTrack = true;
        return;
    }
    const bool isRecord = sample->data()[0] == 1;
    prefixHevcParameterSets(sample->data(), header);
    logSequenceHeader(sample, header);
    sample->setRange(0, header.end);
    track->mCodecData = isRecord ? sample : makeHevcRecord(sample->data(), header);
    if (track->mCodecData == nullptr) return;

    const sp<ABuffer>& csd = track->mCodecData;
    AVI_LOGV("%s(): set HVCC seq hdr, size %zu @L%d:", "generateHevcCodecData", csd->size(),
             __LINE__);
    hexDump(csd->data(), csd->size());
    AMediaFormat_setBuffer(meta, AMEDIAFORMAT_KEY_CSD_HEVC, csd->data(), csd->size());
}

}  // namespace android
