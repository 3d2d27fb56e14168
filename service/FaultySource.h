// SPDX-License-Identifier: Apache-2.0
// A data source that misbehaves on purpose: it wraps another one, injects short reads, errors,
// wrong bytes and delays at chosen calls or offsets, and keeps a record of every call for tests to
// look at.
// Borrows the wrapped source, which must outlive it.
// Threads: every method may be called from several threads at once; calls are numbered in the order
// in which they come in, and a delayed call does not hold the others up.
#pragma once

#include <chrono>
#include <cstdint>
#include <limits>
#include <mutex>
#include <optional>
#include <vector>

#include "service/DataSource.h"

namespace android::service {

/**
 * One misbehaviour of readAt and where it strikes: by default on every call, everywhere.
 *
 *     source.inject(Fault::error(-EIO).onCall(3));
 *     source.inject(Fault::shortRead(1).onOffsets(100, 200));
 */
struct Fault {
    /** Delivers at most `maxBytes` bytes; 0 looks like the end of the source. */
    static Fault shortRead(size_t maxBytes);
    /** Delivers `bytes` less than the source has for the read. */
    static Fault shortBy(size_t bytes);
    /** Returns `code`, a negative number, without reading. */
    static Fault error(ssize_t code);
    /** Delivers as many bytes as the source has, each of them inverted where `mask` has a bit. */
    static Fault garbled(uint8_t mask);
    /** Waits before reading; may be combined with another fault on the same call. */
    static Fault delayed(std::chrono::microseconds delay);

    /** Strikes on call number `call` only, counted from 0 since construction or reset(). */
    Fault onCall(uint64_t call) const;
    /** Strikes on call `first` and every later one. */
    Fault fromCall(uint64_t first) const;
    /** Strikes on reads that ask for any byte of [begin, end). */
    Fault onOffsets(off64_t begin, off64_t end) const;

    /** Whether a read of `size` bytes at `offset`, the `call`th, is struck. */
    bool strikes(uint64_t call, off64_t offset, size_t size) const;

    uint64_t firstCall = 0;
    uint64_t lastCall = std::numeric_limits<uint64_t>::max();  // inclusive
    off64_t beginOffset = std::numeric_limits<off64_t>::min();
    off64_t endOffset = std::numeric_limits<off64_t>::max();  // exclusive
    std::optional<size_t> maxBytes;
    size_t missingBytes = 0;
    std::optional<ssize_t> code;
    uint8_t mask = 0;
    std::chrono::microseconds delay{0};
};

class FaultySource : public DataSource {
  public:
    /** One readAt as it was asked for and what it returned. */
    struct Call {
        off64_t offset = 0;
        size_t size = 0;
        ssize_t result = 0;
    };

    /** `source` must outlive this object. */
    explicit FaultySource(DataSource& source);

    /** Adds a fault. Of several that strike one read, the first error and the smallest size win,
     *  missing bytes and delays add up, masks are combined by XOR. */
    void inject(const Fault& fault);
    /** Removes every fault, also the one set by failGetSize. */
    void clearFaults();
    /** From now on getSize returns `status` instead of the size. */
    void failGetSize(status_t status);

    /** Number of readAt calls so far. */
    uint64_t callCount() const;
    /** Number of bytes delivered so far. */
    uint64_t byteCount() const;
    /** Number of getSize calls so far. */
    uint64_t getSizeCount() const;
    /** Every finished readAt since construction or reset(), in the order in which they ended. */
    std::vector<Call> calls() const;
    /** Starts counting at 0 again with an empty list; the faults stay. */
    void reset();

    ssize_t readAt(off64_t offset, void* data, size_t size) override;
    status_t getSize(off64_t* size) override;
    uint32_t flags() override { return mSource.flags(); }
    std::optional<std::string> getUri() override { return mSource.getUri(); }

  private:
    // What all the faults that strike one call come to.
    struct Verdict {
        std::optional<ssize_t> code;
        size_t maxBytes = std::numeric_limits<size_t>::max();
        size_t missingBytes = 0;
        uint8_t mask = 0;
        std::chrono::microseconds delay{0};
    };
    Verdict judge(off64_t offset, size_t size);
    // What the verdict leaves of a read.
    ssize_t deliver(const Verdict& verdict, off64_t offset, void* data, size_t size);

    DataSource& mSource;
    mutable std::mutex mLock;  // guards everything below
    std::vector<Fault> mFaults;
    std::optional<status_t> mGetSizeStatus;
    std::vector<Call> mCalls;
    uint64_t mCallCount = 0;
    uint64_t mByteCount = 0;
    uint64_t mGetSizeCount = 0;
};

}  // namespace android::service
