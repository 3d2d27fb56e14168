// SPDX-License-Identifier: Apache-2.0
//
// How much memory the whole program, the plug-in included, asks for while an object of this class
// lives. Counts malloc, calloc, realloc and what C++ builds on them, whether or not the memory is
// ever touched. One object at a time; allocations may come from any thread.

#pragma once

#include <cstddef>

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

}  // namespace avitest
