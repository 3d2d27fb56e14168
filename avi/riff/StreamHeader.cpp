// SPDX-License-Identifier: Apache-2.0
#include "riff/StreamHeader.h"

#include <media/stagefright/MediaErrors.h>

#include "support/ByteReader.h"
#include "support/Log.h"

namespace android {

constexpr int kLineShortStrh = 2800;
constexpr int kLineUnreadableStrh = 2805;

// The frame rectangle after these bytes is not read: old writers leave it out.
constexpr size_t kStreamHeaderSize = 48;

namespace {

// fourcc type | fourcc handler | u32 flags | u16 priority | u16 language | u32 initFrames |
// u32 scale | u32 rate | u32 start | u32 length | u32 sugBufSize | u32 quality | u32 sampleSize
struct StreamHeader {
    FourCC type, handler;
    uint32_t flags;
    uint16_t priority, language;
    uint32_t initFrames, scale, rate, start, length, sugBufSize, quality, sampleSize;
};

StreamHeader readStreamHeader(const uint8_t (&bytes)[kStreamHeaderSize]) {
    ByteReader in(bytes, sizeof(bytes));
    StreamHeader h = {};
    in.code(&h.type);
    in.code(&h.handler);
    in.u32(&h.flags);
    in.u16(&h.priority);
    in.u16(&h.language);
    for (uint32_t* field : {&h.initFrames, &h.scale, &h.rate, &h.start, &h.length, &h.sugBufSize,
                            &h.quality, &h.sampleSize}) {
        in.u32(field);
    }
    return h;
}

void logStreamHeader(const StreamHeader& h) {
    AVI_LOGV("==== AVIStreamHeader ====");
    AVI_LOGD("   fccType:    %s", FourCCText(h.type).text);
    AVI_LOGV("   fccHandler: %s", FourCCText(h.handler).text);
    AVI_LOGV("   flags:      %d", static_cast<int>(h.flags));
    AVI_LOGV("   priority:   %d", h.priority);
    AVI_LOGV("   language:   %d", h.language);
    AVI_LOGV("   initFrames: %d", static_cast<int>(h.initFrames));
    AVI_LOGD("   rate/scale: %d/%d", static_cast<int>(h.rate), static_cast<int>(h.scale));
    AVI_LOGV("   start:      %d", static_cast<int>(h.start));
    AVI_LOGV("   length:     %d", static_cast<int>(h.length));
    AVI_LOGV("   sugBufSize: %d", static_cast<int>(h.sugBufSize));
    AVI_LOGV("   quality:    %d", static_cast<int>(h.quality));
    AVI_LOGD("   sampleSize: %d", static_cast<int>(h.sampleSize));
    AVI_LOGV("   rcFrame:    (%d, %d, %d, %d)", 0, 0, 0, 0);
}

// Frames a second as the player shows them: rounded at the first decimal digit, so that 29.97 is 30
// and 23.45 stays 23.
int32_t roundFrameRate(float frameRate) {
    const int32_t whole = clampTo<int32_t>(frameRate);
    const bool roundUp = clampTo<int64_t>(frameRate * 10.0) % 10 >= 5;
    return roundUp && whole < INT32_MAX ? whole + 1 : whole;
}

void publishDisplaySize(const FrameSize& size, AMediaFormat* meta) {
    if (size.width == 0 || size.height == 0) return;
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_DISPLAY_WIDTH, static_cast<int32_t>(size.width));
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_DISPLAY_HEIGHT, static_cast<int32_t>(size.height));
}

void publishFrameRate(const StreamHeader& h, AMediaFormat* fileMeta, Track* track) {
    if (h.rate == 0 || h.scale == 0) {
        AVI_LOGW("%s(): No valid frame rate info in this track.\n", "parseSTRH");
        return;
    }
    const float frameRate = static_cast<float>(h.rate) / static_cast<float>(h.scale);
    const int32_t rounded = roundFrameRate(frameRate);
    track->info.mFrameRate = frameRate;
    AMediaFormat_setInt32(track->meta.get(), AMEDIAFORMAT_KEY_FRAME_RATE, rounded);
    AVI_LOGD("set track scale %u rate %u fps %f -> %d", h.scale, h.rate,
             static_cast<double>(frameRate), rounded);
    if (h.length == 0) return;
    // The rounded rate on purpose: this duration is the one shown before the index is read.
    AMediaFormat_setInt64(fileMeta, AMEDIAFORMAT_KEY_DURATION,
                          divideOrZero<int64_t>(h.length * kUsPerSecond, rounded));
}

}  // namespace

status_t parseSTRH(FileReader& reader, int64_t start, int64_t end, const FrameSize& frameSize,
                   AMediaFormat* fileMeta, Track* track) {
    uint8_t bytes[kStreamHeaderSize];
    if (end - start < static_cast<int64_t>(sizeof(bytes))) {
        return fail("parseSTRH", status_t{ERROR_MALFORMED}, kLineShortStrh);
    }
    if (!reader.readExactly(start, bytes, sizeof(bytes))) {
        return fail("parseSTRH", status_t{ERROR_IO}, kLineUnreadableStrh);
    }
    const StreamHeader h = readStreamHeader(bytes);
    logStreamHeader(h);

    track->mIsVideo = h.type == fourcc("vids");
    track->mIsAudio = h.type == fourcc("auds") || h.type == fourcc("midi");
    track->info.mFccType = h.type;
    if (track->mIsVideo) {
        publishDisplaySize(frameSize, track->meta.get());
        publishFrameRate(h, fileMeta, track);
    }

    track->info.mScale = h.scale;
    track->info.mRate = h.rate;
    track->mStartOffset = h.start;
    track->mTotalSamples = h.length;
    track->info.mSampleSize = track->mIsVideo ? 0 : h.sampleSize;
    track->mMaxSampleSize = track->info.mSampleSize;
    track->mBadTrack = track->mIsAudio && audioDisabled();
    return OK;
}

}  // namespace android
