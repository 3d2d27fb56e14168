// SPDX-License-Identifier: Apache-2.0
//
// Configuration of MPEG-1 and MPEG-2 video tracks: the headers in front of the first picture
// (ISO/IEC 13818-2, 6.2.2), in an elementary stream descriptor.
#include "codec/Mpeg2CodecData.h"

#include <algorithm>
#include <iterator>

#include "codec/Esds.h"
#include "codec/ReadSample.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

// Bytes in front of the first picture start code; all of them when there is no picture.
size_t sequenceHeaderLength(const sp<ABuffer>& sample) {
    static constexpr uint8_t kPictureStartCode[] = {0x00, 0x00, 0x01, 0x00};
    const uint8_t* begin = sample->data();
    const uint8_t* end = begin + sample->size();
    const uint8_t* picture =
        std::search(begin, end, std::begin(kPictureStartCode), std::end(kPictureStartCode));
    return static_cast<size_t>(picture - begin);
}

}  // namespace

void generateMPEG2CodecData(const FileReader& reader, Track* track) {
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
