// SPDX-License-Identifier: Apache-2.0
#include "codec/MpegAudioSearch.h"

#include <media/stagefright/MediaErrors.h>
#include <media/stagefright/foundation/ByteUtils.h>
#include <string.h>

#include <algorithm>

#include "codec/ReadSample.h"
#include "support/Log.h"

namespace android {

namespace {

void logProbedSample(const sp<ABuffer>& sample, size_t index, int64_t offset) {
    uint8_t bytes[kMpegAudioHeaderSize] = {};
    memcpy(bytes, sample->data(), std::min(sizeof(bytes), sample->size()));
    AVI_LOGV("sample[%d] size %d offset %ld, %02X %02X %02X %02X", static_cast<int>(index),
             static_cast<int>(sample->size()), static_cast<long>(offset), bytes[0], bytes[1],
             bytes[2], bytes[3]);
}

}  // namespace

// A sample that is searched for a frame header.
struct MpegAudioSearch::Probe {
    size_t index;
    const uint8_t* data;
    size_t size;
    bool isLast;  // of the table
};

status_t MpegAudioSearch::findMP3Header(MpegAudioStart* out) {
    AVI_TRACE("findMP3Header(): max sample size %u", mTrack.mMaxSampleSize);
    *out = {};
    const SampleTable& table = mTrack.mTable;
    for (size_t i = 0; i < table.size(); ++i) {
        sp<ABuffer> sample;
        if (readSample(mReader, mTrack, i, &sample) != OK) {
            return fail("findMP3Header", status_t{ERROR_IO}, __LINE__);
        }
        logProbedSample(sample, i, table.offset(i));
        mFollowingRead = false;
        const Probe probe = {i, sample->data(), sample->size(), i + 1 == table.size()};
        const status_t err = findMP3HeaderIn(probe, out);
        if (err != OK || out->header != 0) return err;
    }
    return OK;
}

status_t MpegAudioSearch::findMP3HeaderIn(const Probe& probe, MpegAudioStart* out) {
    const auto fileOffset = static_cast<uint64_t>(mTrack.mTable.offset(probe.index));
    for (size_t p = 0; p + kMpegAudioHeaderSize <= probe.size; ++p) {
        const uint32_t candidate = U32_AT(probe.data + p);
        size_t frameSize = 0;
        if (!parseMP3Header(candidate, &frameSize)) continue;
        const size_t next = p + frameSize;
        if (probe.isLast && next + kMpegAudioHeaderSize > probe.size) {
            AVI_TRACE("%s(): [%d] Find header/offset/size=(%x/%llx/%zu)", "findMP3Header",
                      static_cast<int>(probe.index), candidate, ull(fileOffset + p), frameSize);
            *out = {probe.index, p, candidate};
            return OK;
        }
        uint32_t test = 0;
        const status_t err = readSuccessor(probe, next, &test);
        if (err != OK) return err;
        AVI_TRACE("%s(): [%d] Find header/offset/size/test=(%x/%llx/%zu/%x)", "findMP3Header",
                  static_cast<int>(probe.index), candidate, ull(fileOffset + p), frameSize, test);
        if (((test ^ candidate) & kMpegAudioStreamMask) == 0) {
            *out = {probe.index, p, candidate};
            return OK;
        }
    }
    return OK;
}

// The four bytes that follow a candidate's frame, which may go on in the next sample. A candidate
// is only believed when they agree with it: sync bits alone are common in compressed data.
status_t MpegAudioSearch::readSuccessor(const Probe& probe, size_t position, uint32_t* out) {
    uint8_t bytes[kMpegAudioHeaderSize] = {};
    const size_t inside =
        position < probe.size ? std::min(sizeof(bytes), probe.size - position) : 0;
    memcpy(bytes, probe.data + (inside > 0 ? position : 0), inside);
    const size_t missing = sizeof(bytes) - inside;
    if (missing > 0 && mTrack.mTable.chunkSize(probe.index + 1) < missing) {
        bytes[0] = 0;
    } else if (missing > 0 && !readFollowing(probe.index + 1, missing, bytes + inside)) {
        return fail("findMP3Header", status_t{ERROR_IO}, __LINE__);
    }
    *out = U32_AT(bytes);
    return OK;
}

// The first `count` bytes of sample `index`. Where all bytes of a header cannot be had, just those
// that are asked for may still be there.
bool MpegAudioSearch::readFollowing(size_t index, size_t count, uint8_t* out) {
    const int64_t offset = mTrack.mTable.offset(index);
    if (!mFollowingRead) {
        const size_t size = std::min<size_t>(sizeof(mFollowing), mTrack.mTable.chunkSize(index));
        mFollowingSize = mReader.readExactly(offset, mFollowing, size) ? size : 0;
        mFollowingRead = true;
    }
    if (count > mFollowingSize) return mReader.readExactly(offset, out, count);
    memcpy(out, mFollowing, count);
    return true;
}

}  // namespace android
