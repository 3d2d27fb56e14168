// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/robustness/AllocationWatch.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define AVI_SANITIZER_OWNS_MALLOC 1
#endif
#endif

#ifdef AVI_SANITIZER_OWNS_MALLOC
#include <sanitizer/allocator_interface.h>
#endif

namespace {

// Constants at start-up: memory is asked for before any constructor has run.
std::atomic<size_t> gLargest{0};
std::atomic<int64_t> gHeld{0};
std::atomic<int64_t> gHighest{0};
std::atomic<int64_t> gHeldAtStart{0};
std::atomic<size_t> gRefused{SIZE_MAX};
std::atomic<size_t> gRefusals{0};
std::atomic<size_t> gRefusedNumber{SIZE_MAX};
std::atomic<size_t> gRequests{0};

template <typename T>
void raise(std::atomic<T>* to, T value) {
    T seen = to->load();
    while (seen < value && !to->compare_exchange_weak(seen, value)) {
    }
}

void noteAllocation(size_t requested, size_t held) {
    raise(&gLargest, requested);
    const auto grown = static_cast<int64_t>(held);
    raise(&gHighest, gHeld.fetch_add(grown) + grown);
}

void noteRelease(size_t held) {
    gHeld.fetch_sub(static_cast<int64_t>(held));
}

}  // namespace

#ifdef AVI_SANITIZER_OWNS_MALLOC

namespace {

void allocated(const volatile void*, size_t size) {
    noteAllocation(size, size);
}

void released(const volatile void* memory) {
    if (memory != nullptr) {
        noteRelease(__sanitizer_get_allocated_size(const_cast<const void*>(memory)));
    }
}

void startCounting() {
    static const bool installed = __sanitizer_install_malloc_and_free_hooks(allocated, released);
    if (!installed) throw std::runtime_error("allocations cannot be counted");
}

}  // namespace

#else

namespace {

void startCounting() {}  // the functions below always count

bool isRefused(size_t size) {
    if (size == gRefused) {
        ++gRefusals;
        return true;
    }
    return gRequests++ == gRefusedNumber;
}

void* noted(void* memory, size_t requested) {
    if (memory != nullptr) noteAllocation(requested, malloc_usable_size(memory));
    return memory;
}

}  // namespace

// The C library's own names for what the definitions below stand in front of, also for libraries
// that are loaded later. Aligned memory is not counted.
#define AVI_EXPORTED __attribute__((visibility("default")))
extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void __libc_free(void* memory);

AVI_EXPORTED void* malloc(size_t size) noexcept {
    return isRefused(size) ? nullptr : noted(__libc_malloc(size), size);
}

AVI_EXPORTED void* calloc(size_t count, size_t size) noexcept {
    if (gRequests++ == gRefusedNumber) return nullptr;
    void* memory = __libc_calloc(count, size);
    return noted(memory, memory == nullptr ? 0 : count * size);
}

AVI_EXPORTED void* realloc(void* memory, size_t size) noexcept {
    if (isRefused(size)) return nullptr;
    const size_t before = memory == nullptr ? 0 : malloc_usable_size(memory);
    void* moved = __libc_realloc(memory, size);
    if (moved != nullptr || size == 0) noteRelease(before);
    return noted(moved, size);
}

AVI_EXPORTED void free(void* memory) noexcept {
    if (memory != nullptr) noteRelease(malloc_usable_size(memory));
    __libc_free(memory);
}

}  // extern "C"

#endif

namespace avitest {

AllocationWatch::AllocationWatch() {
    startCounting();
    gLargest = 0;
    gHeldAtStart = gHeld.load();
    gHighest = gHeld.load();
}

size_t AllocationWatch::largest() const {
    return gLargest;
}

size_t AllocationWatch::peak() const {
    return static_cast<size_t>(std::max<int64_t>(0, gHighest - gHeldAtStart));
}

int64_t AllocationWatch::held() const {
    return gHeld - gHeldAtStart;
}

NoMemoryFor::NoMemoryFor(size_t size) {
    gRefusals = 0;
    gRefused = size;
}

NoMemoryFor::~NoMemoryFor() {
    gRefused = SIZE_MAX;
}

size_t NoMemoryFor::refusals() const {
    return gRefusals;
}

bool NoMemoryFor::isPossible() {
#ifdef AVI_SANITIZER_OWNS_MALLOC
    return false;
#else
    return true;
#endif
}

NoMemoryOnce::NoMemoryOnce(size_t number) {
    gRequests = 0;
    gRefusedNumber = number;
}

NoMemoryOnce::~NoMemoryOnce() {
    gRefusedNumber = SIZE_MAX;
}

size_t NoMemoryOnce::requests() const {
    return gRequests;
}

}  // namespace avitest
