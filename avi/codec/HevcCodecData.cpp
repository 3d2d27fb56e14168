// SPDX-License-Identifier: Apache-2.0
//
// Configuration of HEVC tracks from the parameter sets in front of their first picture.
#include "codec/HevcCodecData.h"

#include <media/stagefright/MediaErrors.h>

#include <algorithm>

#include "codec/HevcParameterSets.h"
#include "codec/ReadSample.h"
#include "support/Arithmetic.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

bool hasConfig(AMediaFormat* meta) {
    void* data = nullptr;
    size_t size = 0;
    return AMediaFormat_getBuffer(meta, AMEDIAFORMAT_KEY_CSD_HEVC, &data, &size);
}

unsigned unitSize(const HevcParameterSet& set) {
    constexpr uint32_t kPrefixSize = 4;
    return wrapSub32(static_cast<uint32_t>(set.entrySize), kPrefixSize);
}

void logSequenceHeader(const sp<ABuffer>& sample, const HevcSequenceHeader& h) {
    AVI_LOGV("%s(): Whole Seq Hdr found @%u, VPS/SPS/PPS size %u/%u/%u", "generateHevcCodecData",
             static_cast<unsigned>(h.end), unitSize(h.vps), unitSize(h.sps), unitSize(h.pps));
    hexDump(sample->data() + h.vps.at, std::min(h.end, sample->size() - h.vps.at));
    AVI_LOGV("%s(): NAL start @offset %d.", "generateHevcCodecData", static_cast<int>(h.end));
}

}  // namespace

void generateHevcCodecData(FileReader& reader, Track* track) {
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
    if (!rewriteHevcSequenceHeader(sample->data(), sample->size(), &header)) {
        AVI_LOGE("%s(): Found no sequence start! UNSUPPORTED HEVC!", "generateHevcCodecData");
        track->mBadTrack = true;
        return;
    }
    logSequenceHeader(sample, header);
    const bool isRecord = sample->data()[0] == 1;
    const sp<ABuffer> record =
        isRecord ? sample : makeHevcRecord(sample->data(), sample->size(), header);
    if (record == nullptr) return;
    if (isRecord) sample->setRange(0, header.end);
    track->mCodecData = nullptr;  // what the stream format had is of no use any more
    AVI_LOGV("%s(): set HVCC seq hdr, size %zu @L%d:", "generateHevcCodecData", record->size(),
             __LINE__);
    hexDump(record->data(), record->size());
    AMediaFormat_setBuffer(meta, AMEDIAFORMAT_KEY_CSD_HEVC, record->data(), record->size());
}

}  // namespace android
