// SPDX-License-Identifier: Apache-2.0
#include "service/FaultySource.h"

#include <algorithm>
#include <thread>

namespace android::service {

Fault Fault::shortRead(size_t maxBytes) {
    Fault fault;
    fault.maxBytes = maxBytes;
    return fault;
}

Fault Fault::shortBy(size_t bytes) {
    Fault fault;
    fault.missingBytes = bytes;
    return fault;
}

Fault Fault::error(ssize_t code) {
    Fault fault;
    fault.code = code;
    return fault;
}

Fault Fault::garbled(uint8_t mask) {
    Fault fault;
    fault.mask = mask;
    return fault;
}

Fault Fault::delayed(std::chrono::microseconds delay) {
    Fault fault;
    fault.delay = delay;
    return fault;
}

Fault Fault::onCall(uint64_t call) const {
    Fault fault = *this;
    fault.firstCall = call;
    fault.lastCall = call;
    return fault;
}

Fault Fault::fromCall(uint64_t first) const {
    Fault fault = *this;
    fault.firstCall = first;
    fault.lastCall = std::numeric_limits<uint64_t>::max();
    return fault;
}

Fault Fault::onOffsets(off64_t begin, off64_t end) const {
    Fault fault = *this;
    fault.beginOffset = begin;
    fault.endOffset = end;
    return fault;
}

bool Fault::strikes(uint64_t call, off64_t offset, size_t size) const {
    if (call < firstCall || call > lastCall) return false;
    if (offset >= endOffset) return false;
    if (offset >= beginOffset) return true;
    // Before the range: the distance fits unsigned even from one end of off64_t to the other.
    uint64_t distance = 0;
    if (__builtin_sub_overflow(beginOffset, offset, &distance)) return false;
    return size > distance;
}

FaultySource::FaultySource(DataSource& source) : mSource(source) {}

void FaultySource::inject(const Fault& fault) {
    std::lock_guard<std::mutex> lock(mLock);
    mFaults.push_back(fault);
}

void FaultySource::clearFaults() {
    std::lock_guard<std::mutex> lock(mLock);
    mFaults.clear();
    mGetSizeStatus.reset();
}

void FaultySource::failGetSize(status_t status) {
    std::lock_guard<std::mutex> lock(mLock);
    mGetSizeStatus = status;
}

uint64_t FaultySource::callCount() const {
    std::lock_guard<std::mutex> lock(mLock);
    return mCallCount;
}

uint64_t FaultySource::byteCount() const {
    std::lock_guard<std::mutex> lock(mLock);
    return mByteCount;
}

uint64_t FaultySource::getSizeCount() const {
    std::lock_guard<std::mutex> lock(mLock);
    return mGetSizeCount;
}

std::vector<FaultySource::Call> FaultySource::calls() const {
    std::lock_guard<std::mutex> lock(mLock);
    return mCalls;
}

void FaultySource::reset() {
    std::lock_guard<std::mutex> lock(mLock);
    mCalls.clear();
    mCallCount = 0;
    mByteCount = 0;
    mGetSizeCount = 0;
}

// Numbers the call and sums up the faults that strike it.
FaultySource::Verdict FaultySource::judge(off64_t offset, size_t size) {
    std::lock_guard<std::mutex> lock(mLock);
    const uint64_t call = mCallCount++;
    Verdict verdict;
    for (const Fault& fault : mFaults) {
        if (!fault.strikes(call, offset, size)) continue;
        if (!verdict.code) verdict.code = fault.code;
        if (fault.maxBytes) verdict.maxBytes = std::min(verdict.maxBytes, *fault.maxBytes);
        verdict.missingBytes += fault.missingBytes;
        verdict.mask ^= fault.mask;
        verdict.delay += fault.delay;
    }
    return verdict;
}

ssize_t FaultySource::deliver(const Verdict& verdict, off64_t offset, void* data, size_t size) {
    if (verdict.code) return *verdict.code;
    const ssize_t read = mSource.readAt(offset, data, std::min(size, verdict.maxBytes));
    if (read <= 0) return read;
    auto* bytes = static_cast<uint8_t*>(data);
    const auto count = static_cast<size_t>(read);
    std::for_each(bytes, bytes + count, [&verdict](uint8_t& byte) { byte ^= verdict.mask; });
    return static_cast<ssize_t>(count - std::min(count, verdict.missingBytes));
}

ssize_t FaultySource::readAt(off64_t offset, void* data, size_t size) {
    const Verdict verdict = judge(offset, size);
    if (verdict.delay.count() > 0) std::this_thread::sleep_for(verdict.delay);
    const ssize_t result = deliver(verdict, offset, data, size);

    std::lock_guard<std::mutex> lock(mLock);
    mCalls.push_back({offset, size, result});
    if (result > 0) mByteCount += static_cast<uint64_t>(result);
    return result;
}

status_t FaultySource::getSize(off64_t* size) {
    {
        std::lock_guard<std::mutex> lock(mLock);
        ++mGetSizeCount;
        if (mGetSizeStatus) return *mGetSizeStatus;
    }
    return mSource.getSize(size);
}

}  // namespace android::service
