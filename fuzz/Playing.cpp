// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Playing.h"

#include <utility>

#include "fuzz/Finding.h"

namespace avifuzz {

namespace service = android::service;

namespace {

// What a track may ask for to be started: the fuzzer would spend its time on clearing memory. Above
// the largest size a track refuses to start.
constexpr int32_t kMaxBufferBytes = 1 << 18;
constexpr int32_t kRefusedBufferBytes = 64 << 20;

// Fewer than a group has at the least while buffers are small: a read would wait for one.
constexpr size_t kMostKept = 4;

bool isAffordable(const service::Track& track) {
    const service::FormatResult format = track.getFormat();
    const int32_t bytes = format.format.getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE).value_or(0);
    return bytes <= kMaxBufferBytes || bytes > kRefusedBufferBytes;
}

void check(const service::ReadResult& result) {
    if ((result.status == AMEDIA_OK) != static_cast<bool>(result.buffer)) {
        finding("status %d and buffer do not agree", static_cast<int>(result.status));
    }
    if (!result.buffer) return;
    if (!result.buffer.metaData().getInt64(AMEDIAFORMAT_KEY_TIME_US)) {
        finding("a buffer without a time");
    }
    const std::vector<uint8_t> bytes = result.buffer.bytes();  // every one must be readable
}

}  // namespace

Playing::~Playing() {
    mTrack.reset();
    if (mBuffers.heldCount() != mKept.size()) finding("a freed source holds a buffer");
}

void Playing::start() {
    if (mStarted || !isAffordable(*mTrack)) return;
    mStarted = mTrack->start(mBuffers) == AMEDIA_OK;
}

void Playing::stop() {
    if (!mStarted) return;
    if (mTrack->stop() != AMEDIA_OK) finding("a track does not stop");
    if (mBuffers.heldCount() != mKept.size()) finding("a stopped track holds a buffer");
    mStarted = false;
}

bool Playing::read(uint32_t options, int64_t timeUs, bool keep) {
    if (!mStarted) return false;
    service::ReadResult result = mTrack->read(options, timeUs);
    check(result);
    if (!result.buffer) return false;
    if (keep && mKept.size() < kMostKept) mKept.push_back(std::move(result.buffer));
    return true;
}

void Playing::readOn(size_t count) {
    while (count > 0 && read())
        --count;
}

void Playing::ask() const {
    mTrack->getFormat().format.toString();
    mTrack->supportsNonBlockingRead();
}

}  // namespace avifuzz
