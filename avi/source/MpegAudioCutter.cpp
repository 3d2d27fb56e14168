// SPDX-License-Identifier: Apache-2.0
#include "source/MpegAudioCutter.h"

#include <media/stagefright/foundation/ByteUtils.h>
#include <string.h>

#include <algorithm>

#include "codec/MpegAudioHeader.h"

namespace android {

namespace {

constexpr uint32_t kFirstSyncBit = 0x80000000;
constexpr size_t kMinFrameSize = 4;
constexpr size_t kZeroedSideInfo = 12;
constexpr size_t kCreatedSize = kMpegAudioHeaderSize + kZeroedSideInfo;

}  // namespace

MpegAudioCutter::MpegAudioCutter(const TrackInfo& info)
    : mIsActive((info.mMP3Header & kFirstSyncBit) != 0),
      mStreamHeader(info.mMP3Header),
      mBlockSize(info.mBlockMode ? info.mBlockAlign : 0),
      // 32-bit by habit of the format: scales of audio streams are small.
      mUnitUs(
          divideOrZero(wrapMul32(info.mScale, static_cast<uint32_t>(kUsPerSecond)), info.mRate)) {}

MpegAudioFound MpegAudioCutter::find(const uint8_t* data, size_t length) const {
    MpegAudioFound found;
    for (size_t p = mSearched; p + kMpegAudioHeaderSize <= length; ++p) {
        const uint32_t candidate = U32_AT(data + p);
        if (((candidate ^ mStreamHeader) & kMpegAudioStreamMask) != 0) continue;
        found.position = static_cast<int>(p);
        found.header = candidate;
        found.isValid = parseMP3Header(candidate, &found.frameSize, &found.layer, &found.bitRate);
        break;
    }
    return found;
}

MpegAudioCut MpegAudioCutter::cut(const uint8_t* data, size_t length) {
    const MpegAudioCut cut = chooseCut(find(data, length), length);
    const size_t searched =
        cut.found.position < 0 ? length : static_cast<size_t>(cut.found.position);
    const size_t taken = cut.start + cut.size;
    // A created header may reach into what is left, where it is found or not.
    const bool keepsRest = cut.kind != MpegAudioCut::Kind::kHeaderless || cut.size >= kCreatedSize;
    mSearched = keepsRest && searched > taken ? searched - taken : 0;
    return cut;
}

MpegAudioCut MpegAudioCutter::chooseCut(const MpegAudioFound& found, size_t length) const {
    MpegAudioCut cut;
    cut.found = found;
    if (found.isValid && found.frameSize >= kMinFrameSize) {
        cut.start = static_cast<size_t>(found.position);
        cut.size = found.frameSize;
        const bool isWhole = cut.size <= length - cut.start;
        cut.kind = isWhole ? MpegAudioCut::Kind::kFrame : MpegAudioCut::Kind::kSpanning;
        return cut;
    }
    const bool needsHeader = !found.isValid && length >= kMpegAudioHeaderSize;
    cut.kind = needsHeader ? MpegAudioCut::Kind::kHeaderless : MpegAudioCut::Kind::kRest;
    cut.size = needsHeader && mBlockSize != 0 ? std::min(mBlockSize, length) : length;
    return cut;
}

void MpegAudioCutter::createHeader(uint8_t* data, size_t length) const {
    for (size_t i = 0; i < kMpegAudioHeaderSize; ++i) {
        data[i] = static_cast<uint8_t>(mStreamHeader >> (24 - 8 * i));
    }
    memset(data + kMpegAudioHeaderSize, 0,
           std::min(length - kMpegAudioHeaderSize, kZeroedSideInfo));
}

int64_t MpegAudioCutter::durationUs(const MpegAudioCut& cut) {
    return divideOrZero<int64_t>(static_cast<int64_t>(cut.size) * 8000, cut.found.bitRate);
}

int64_t MpegAudioCutter::stamp(const MpegAudioCut& cut, int64_t chunkTimeUs) {
    switch (cut.kind) {
        case MpegAudioCut::Kind::kFrame:
            mTimeUs = std::max(chunkTimeUs, saturatingAdd(mTimeUs, durationUs(cut)));
            return mTimeUs;
        case MpegAudioCut::Kind::kHeaderless:
            mTimeUs = std::max(chunkTimeUs, saturatingAdd(mTimeUs, mUnitUs));
            return mTimeUs;
        case MpegAudioCut::Kind::kRest:
            mTimeUs = std::max(chunkTimeUs, mTimeUs);
            return mTimeUs;
        default: {  // kSpanning: the frame begins where the one before ended
            const int64_t timeUs = std::max(chunkTimeUs, mTimeUs);
            mTimeUs = saturatingAdd(timeUs, durationUs(cut));
            return timeUs;
        }
    }
}

}  // namespace android
