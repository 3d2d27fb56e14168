// SPDX-License-Identifier: Apache-2.0
//
// A data source that misbehaves as the orders of an input say: it fails, comes short, lies about
// its size, or grows while it is read. Borrows the bytes. Threads: as the plug-in reads, by one
// thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/Orders.h"
#include "service/DataSource.h"
#include "service/FaultySource.h"

namespace avifuzz {

class UnsteadySource : public android::service::DataSource {
  public:
    /** Takes its misbehaviour off the orders. */
    UnsteadySource(const uint8_t* data, size_t size, Orders* orders);

    ssize_t readAt(off64_t offset, void* data, size_t size) override;
    android::status_t getSize(off64_t* size) override;

    /** The size that a budget may go by: of the bytes there are or were claimed to be. */
    uint64_t budgetSize() const;

  private:
    void chooseSize(Orders* orders);
    void addFault(Orders* orders);
    size_t visible() const;

    const uint8_t* mData;
    size_t mSize;
    bool mSizeFails = false;
    int64_t mClaimed;     // what getSize answers, unless the source grows
    bool mGrows = false;  // from mFirst by mGrowth bytes a read, up to mSize
    size_t mFirst = 0;
    size_t mGrowth = 0;
    uint64_t mCalls = 0;
    std::vector<android::service::Fault> mFaults;
};

}  // namespace avifuzz
