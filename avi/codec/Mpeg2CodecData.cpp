// SPDX-License-Identifier: Apache-2.0
//
// Configuration of MPEG-1 and MPEG-2 video tracks: the headers in front of the first picture
// (ISO/IEC 13818-2, 6.2.2), in an elementary stream descriptor.
#include "codec/Mpeg2CodecData.h"

#include "codec/Esds.h"
#include "codec/ReadSample.h"
#include "support/HexDump.h"
#include "support/Log.h"
#include "support/StartCode.h"

namespace android {

namespace {

// Bytes in front of the first picture start code; all of them when there is no picture.
size_t sequenceHeaderLength(const sp<ABuffer>& sample) {
    constexpr uint8_t kPicture = 0x00;  // the byte after the prefix
    const uint8_t* data = sample->data();
    const size_t size = sample->size();
    for (size_t next = 0; next < size;) {
        const size_t code = findStartCodePrefix(data, size, next);
        next = code + kStartCodePrefixSize;
        if (next < size && data[next] == kPicture) return code;
    }
    return size;
}

}  // namespace

void generateMPEG2CodecData(FileReader& reader, Track* track) {
    sp<ABuffer> sample;
    if (readSample(reader, *track, 0, &sample) != OK) {
        AVI_LOGW("Something wrong to generateMPEG2CodecData.");
        return;
    }
    AVI_LOGV("Make ESDS for MPEG2 from the first frame (sz %d, off %llx)",
             static_cast<int>(sample->size()), ull(static_cast<uint64_t>(track->mTable.offset(0))));
    const size_t length = sequenceHeaderLength(sample);
    const sp<ABuffer> esds =
        length == 0 ? nullptr : makeEsds(sample->data(), length, DescriptorLength::kTwoBytes);
    if (esds == nullptr) {
        AVI_LOGW("Something wrong to generateMPEG2CodecData.");
        return;
    }
    hexDump(esds->data(), esds->size());
    AMediaFormat_setBuffer(track->meta.get(), AMEDIAFORMAT_KEY_ESDS, esds->data(), esds->size());
}

}  // namespace android
