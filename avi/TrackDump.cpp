// SPDX-License-Identifier: Apache-2.0
#include "TrackDump.h"

#include <stdarg.h>
#include <stdio.h>

#include "support/Log.h"

namespace android {

namespace {

// Prints lines until one finds the switch off: another extractor may turn it off at any time, and a
// dump with holes would mislead.
class TrackDump {
  public:
    void line(const char* format, ...) __attribute__((format(printf, 2, 3)));

  private:
    bool mIsOver = false;
};

void TrackDump::line(const char* format, ...) {
    mIsOver = mIsOver || !extractLogEnabled();
    if (mIsOver) return;
    char text[1024];  // the log cuts longer lines all the same
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof(text), format, arguments);  // NOLINT: started above
    va_end(arguments);
    AVI_LOGV("%s", text);
}

void dumpStreamInfo(const TrackInfo& info, TrackDump* dump) {
    dump->line("    mScale         %u", info.mScale);
    dump->line("    mRate          %u", info.mRate);
    dump->line("    mFccType       %s(%x)", FourCCText(info.mFccType).text, toWord(info.mFccType));
    dump->line("    mCompression   %s(%x)", FourCCText(info.mCompression).text,
               toWord(info.mCompression));
    dump->line("    mBlockAlign    %u", info.mBlockAlign);
    dump->line("    mSampleSize    %u", info.mSampleSize);
    dump->line("    mBitsPerSample %u", info.mBitsPerSample);
    dump->line("    mMP3Header     %X", info.mMP3Header);
    dump->line("    mFormatTag      %X", info.mFormatTag);
    dump->line("    mChannels       %u", info.mChannels);
    dump->line("    mSamplesPerSec  %u", info.mSamplesPerSec);
    dump->line("    mAvgBytesPerSec %u", info.mAvgBytesPerSec);
    dump->line("    mSize           %u", info.mSize);
    dump->line("    mBlockMode     %d", info.mBlockMode);
    dump->line("    mBrokenIndex   %d", info.mBrokenIndex);
    dump->line("    mIsRawAACData  %d", info.mIsRawAACData);
    dump->line("    mIsVBRWise     %d", info.mIsVBRWise);
    dump->line("    mAVCStyle      %d", info.mAVCStyle);
    dump->line("    mAVCSizeLength %d", info.mAVCSizeLength);
    dump->line("    mFrameRate     %f", double{info.mFrameRate});
    dump->line("    mInvalidDataSize        %u", info.mInvalidDataSize);
    dump->line("    mInvalidSampleIdx       %u", info.mInvalidSampleIdx);
    dump->line("    mIsExcludingInvalidData %d", info.mIsExcludingInvalidData);
}

void dumpSamples(const Track& track, TrackDump* dump) {
    dump->line("    mStartOffset       %u", track.mStartOffset);
    dump->line("    mTotalSamples      %u", track.mTotalSamples);
    dump->line("    mTotalSyncSamples  %u", track.mTotalSyncSamples);
    dump->line("    mTotalSampleSize   %llu", ull(track.mTotalSampleSize));
    dump->line("    mMaxSampleSize     %u", track.mMaxSampleSize);
    dump->line("    mMaxSyncSampleSize %u", track.mMaxSyncSampleSize);
    dump->line("    mThumbNailIndex    %u", track.mThumbNailIndex);
    dump->line("    mSampleOffsets.size    %zu", track.mTable.size());
    dump->line("    mSampleSizes.size      %zu", track.mTable.size());
    dump->line("    mSampleSyncs.size      %zu", track.mTable.syncFlags());
    dump->line("    mSampleBlockSizes.size %zu", track.mTable.blockTotals());
}

void dumpKind(const Track& track, TrackDump* dump) {
    dump->line("    mIsAVC                  %d", track.mIsAVC);
    dump->line("    mIsHEVC                 %d", track.mIsHEVC);
    dump->line("    mIsVorbis               %d", track.mIsVorbis);
    dump->line("    mINDXValid              %d", track.mINDXValid);
    dump->line("    mNeedCodecData          %d", track.mNeedCodecData);
    dump->line("    mIsIncludeExpensiveMeta %d", track.mIsIncludeExpensiveMeta);
}

}  // namespace

void dumpTrack(const Track& track) {
    if (!extractLogEnabled()) return;
    TrackDump dump;
    dump.line("Dump Track[%u]:", track.info.mStreamIndex);
    dumpStreamInfo(track.info, &dump);
    dumpSamples(track, &dump);
    dumpKind(track, &dump);
    dump.line("%s", AMediaFormat_toString(track.meta.get()));
}

}  // namespace android
