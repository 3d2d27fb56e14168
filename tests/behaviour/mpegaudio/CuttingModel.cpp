// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/mpegaudio/CuttingModel.h"

#include <algorithm>
#include <utility>

namespace avitest {

namespace {

constexpr uint32_t kAlike = 0xFFFE0C00;  // sync, version, layer, sampling rate
constexpr int kBitRates[16] = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0};
constexpr size_t kSamplingRates[] = {44100, 48000, 32000};
constexpr int64_t kSecond = 1000000;

uint32_t wordAt(const Bytes& bytes, size_t p) {
    return uint32_t{bytes[p]} << 24 | uint32_t{bytes[p + 1]} << 16 | uint32_t{bytes[p + 2]} << 8 |
           bytes[p + 3];
}

int64_t lengthUs(size_t size, int bitRate) {
    return static_cast<int64_t>(size) * 8000 / bitRate;
}

}  // namespace

CuttingModel::CuttingModel(const ModelStream& stream, std::vector<Bytes> chunks)
    : mStream(stream), mChunks(std::move(chunks)), mNext(stream.firstChunk) {
    for (const Bytes& chunk : mChunks)
        mCapacity = std::max(mCapacity, 4 * chunk.size());
}

std::vector<ModelRead> CuttingModel::readAll() {
    std::vector<ModelRead> result;
    do {
        result.push_back(read());
    } while (result.back().status != AMEDIA_ERROR_END_OF_STREAM);
    result.pop_back();
    return result;
}

ModelRead CuttingModel::read() {
    mLoadedSize = 0;
    mChunkTimeUs = 0;
    if (mRest.size() < 4 && !refill()) return {AMEDIA_ERROR_END_OF_STREAM, {}, 0};
    const Found found = find();
    if (found.size == 0) return giveHeader();
    if (found.size > mCapacity) {
        mRest.clear();
        return {AMEDIA_ERROR_UNKNOWN, {}, 0};
    }
    return found.start + found.size <= mRest.size() ? giveWhole(found) : giveSplit(found);
}

bool CuttingModel::refill() {
    if (mNext >= mChunks.size()) return false;
    const size_t consumed = mRest.empty() ? mConsumed : 0;
    mConsumed = 0;
    take();
    mRest = slice(mRest, std::min(consumed, mRest.size()), mRest.size());
    if (mRest.size() < 5) {
        if (mNext >= mChunks.size()) {
            mRest.clear();
            return false;
        }
        take();
    }
    mChunkTimeUs = chunkTimeUs();
    return true;
}

void CuttingModel::take() {
    const Bytes& chunk = mChunks[mNext++];
    mRest = joined({mRest, chunk});
    mLoadedSize = chunk.size();
}

// Of the chunk taken last.
int64_t CuttingModel::chunkTimeUs() const {
    const size_t index = mNext - 1;
    if (!mStream.countsBytes) {
        return mStream.durationUs * static_cast<int64_t>(index - mStream.firstChunk) /
               static_cast<int64_t>(mChunks.size());
    }
    int64_t bytes = 0;
    for (size_t i = mStream.firstChunk; i < index; ++i)
        bytes += static_cast<int64_t>(mChunks[i].size());
    return bytes * kSecond * mStream.scale / mStream.rate;
}

// Size 0: no header, or one that says nothing.
CuttingModel::Found CuttingModel::find() const {
    for (size_t p = 0; p + 4 <= mRest.size(); ++p) {
        const uint32_t word = wordAt(mRest, p);
        if ((word & kAlike) != (mStream.header & kAlike)) continue;
        const int bitRate = kBitRates[word >> 12 & 15];
        if (bitRate == 0) return {};
        const size_t size =
            size_t{144000} * static_cast<size_t>(bitRate) / kSamplingRates[word >> 10 & 3] +
            (word >> 9 & 1);
        return {word, p, size, bitRate};
    }
    return {};
}

ModelRead CuttingModel::giveHeader() {
    size_t size = mRest.size();
    if (size < 4) {
        mTimeUs = std::max(mChunkTimeUs, mTimeUs);
    } else {
        const auto unit = static_cast<uint32_t>(uint64_t{mStream.scale} * 1000000) / mStream.rate;
        mTimeUs = std::max(mChunkTimeUs, mTimeUs + unit);
        const Bytes header = headerBytes(mStream.header);
        std::copy(header.begin(), header.end(), mRest.begin());
        for (size_t i = 4; i < std::min<size_t>(16, mRest.size()); ++i)
            mRest[i] = 0;
        if (mStream.blockSize != 0) size = std::min(size, mStream.blockSize);
    }
    ModelRead result{AMEDIA_OK, slice(mRest, 0, size), mTimeUs};
    mRest = slice(mRest, size, mRest.size());
    return result;
}

ModelRead CuttingModel::giveWhole(const Found& found) {
    mTimeUs = std::max(mChunkTimeUs, mTimeUs + lengthUs(found.size, found.bitRate));
    const size_t end = found.start + found.size;
    ModelRead result{AMEDIA_OK, slice(mRest, found.start, end), mTimeUs};
    mRest = slice(mRest, end, mRest.size());
    return result;
}

ModelRead CuttingModel::giveSplit(const Found& found) {
    ModelRead result{AMEDIA_OK, slice(mRest, found.start, mRest.size()), 0};
    mRest.clear();
    bool wholeChunk = false;
    size_t got = 0;
    while (result.bytes.size() < found.size) {
        if (mNext >= mChunks.size()) return {AMEDIA_ERROR_UNKNOWN, {}, 0};
        const size_t missing = found.size - result.bytes.size();
        wholeChunk = wholeChunk || missing == mLoadedSize;
        const Bytes part = slice(mChunks[mNext++], 0, missing);
        got = part.size();
        result.bytes = joined({result.bytes, part});
    }
    mConsumed = wholeChunk ? 0 : got;
    if (!wholeChunk) --mNext;
    mTimeUs = std::max(mTimeUs, mChunkTimeUs);
    result.timeUs = mTimeUs;
    mTimeUs += lengthUs(found.size, found.bitRate);
    return result;
}

}  // namespace avitest
