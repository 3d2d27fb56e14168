// SPDX-License-Identifier: Apache-2.0
//
// How much memory the whole program, the plug-in included, asks for while an object of this class
// lives. Counts malloc, calloc, realloc and what C++ builds on them, whether or not the memory is
// ever touched. One object at a time; allocations may come from any thread.

#pragma once

#include <cstddef>
#include <cstdint>

namespace avitest {

class AllocationWatch {
  public:
    AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    // The largest single request so far, in bytes.
    size_t largest() const;
    // The most memory held at one time beyond what was held at the beginning, in bytes.
    size_t peak() const;
    // What is held now beyond what was held at the beginning, in bytes; negative when it is less.
    int64_t held() const;
};

// As long as an object of this class lives there is no memory for requests of exactly `size` bytes:
// a size that only the allocation under test asks for. One object at a time.
class NoMemoryFor {
  public:
    explicit NoMemoryFor(size_t size);
    NoMemoryFor(const NoMemoryFor&) = delete;
    NoMemoryFor& operator=(const NoMemoryFor&) = delete;
    ~NoMemoryFor();

    // How many requests were refused so far.
    size_t refusals() const;
    // Whether this program can refuse at all: the allocator of a sanitizer cannot be told to.
    static bool isPossible();
};

// As long as an object of this class lives one request for memory fails: the one of this number,
// counted from 0, of those that may fail. These are malloc, calloc and realloc of any thread, and
// what is built on them. One object at a time; possible where NoMemoryFor is.
class NoMemoryOnce {
  public:
    explicit NoMemoryOnce(size_t number);
    NoMemoryOnce(const NoMemoryOnce&) = delete;
    NoMemoryOnce& operator=(const NoMemoryOnce&) = delete;
    ~NoMemoryOnce();

    // How many requests there were so far, the failed one included.
    size_t requests() const;
};

}  // namespace avitest
