// SPDX-License-Identifier: Apache-2.0
#include "fuzz/UnsteadySource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

namespace avifuzz {

using android::service::Fault;

namespace {

constexpr size_t kMostFaults = 4;

}  // namespace

UnsteadySource::UnsteadySource(const uint8_t* data, size_t size, Orders* orders)
    : mData(data), mSize(size), mClaimed(static_cast<int64_t>(size)) {
    chooseSize(orders);
    for (size_t count = orders->below(kMostFaults + 1); count > 0; --count)
        addFault(orders);
}

void UnsteadySource::chooseSize(Orders* orders) {
    const auto size = static_cast<int64_t>(mSize);
    switch (orders->below(8)) {
        case 0:
            mSizeFails = true;
            break;
        case 1:
            mClaimed = -1 - orders->number() / 2;
            break;
        case 2:
            mClaimed = std::min<int64_t>(orders->word(), size);
            break;
        case 3:
            mClaimed = size + orders->word();
            break;
        case 4:
            mClaimed = std::numeric_limits<int64_t>::max() - orders->word();
            break;
        case 5:
            mGrows = true;
            mFirst = std::min<size_t>(orders->word(), mSize);
            mGrowth = orders->byte();
            break;
        default:
            break;  // the truth
    }
}

// An error or a short read, at one call, from one on, or in a range of the file.
void UnsteadySource::addFault(Orders* orders) {
    const uint8_t kind = orders->byte();
    Fault fault = kind % 2 == 0 ? Fault::error(-1 - static_cast<ssize_t>(orders->byte()))
                                : Fault::shortRead(orders->byte());
    const uint16_t where = orders->word();
    switch (kind / 2 % 3) {
        case 0:
            fault = fault.onCall(where);
            break;
        case 1:
            fault = fault.fromCall(where);
            break;
        default:
            fault = fault.onOffsets(where, where + 1 + orders->byte());
            break;
    }
    mFaults.push_back(fault);
}

size_t UnsteadySource::visible() const {
    if (!mGrows) return mSize;
    const uint64_t grown = mFirst + mCalls * mGrowth;
    return std::min<uint64_t>(grown, mSize);
}

ssize_t UnsteadySource::readAt(off64_t offset, void* data, size_t size) {
    const uint64_t call = mCalls++;
    for (const Fault& fault : mFaults) {
        if (!fault.strikes(call, offset, size)) continue;
        if (fault.code) return *fault.code;
        size = std::min(size, *fault.maxBytes);
    }
    const size_t end = visible();
    if (offset < 0) return -EINVAL;
    if (static_cast<uint64_t>(offset) >= end) return 0;
    const size_t count = std::min(size, end - static_cast<size_t>(offset));
    if (count > 0) std::memcpy(data, mData + offset, count);
    return static_cast<ssize_t>(count);
}

android::status_t UnsteadySource::getSize(off64_t* size) {
    if (mSizeFails) return android::UNKNOWN_ERROR;
    *size = mGrows ? static_cast<int64_t>(visible()) : mClaimed;
    return android::OK;
}

uint64_t UnsteadySource::budgetSize() const {
    return std::max<uint64_t>(mSize, mClaimed < 0 ? 0 : static_cast<uint64_t>(mClaimed));
}

}  // namespace avifuzz
