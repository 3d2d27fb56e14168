// SPDX-License-Identifier: Apache-2.0
//
// A new that has no answer to a lack of memory ends a program that is built without exceptions, as
// the plug-in is on the device. So it is not made to fail here: only a nothrow new asks the malloc
// that tests let fail, as libraries do that call malloc themselves.

#include <cstdlib>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define AVI_SANITIZER_OWNS_MALLOC 1
#endif
#endif

#ifndef AVI_SANITIZER_OWNS_MALLOC

extern "C" void* __libc_malloc(size_t size);

void* operator new(size_t size) {
    void* memory = __libc_malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void* operator new[](size_t size) {
    return ::operator new(size);
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new[](size_t size, const std::nothrow_t& tag) noexcept {
    return ::operator new(size, tag);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, size_t) noexcept {
    std::free(memory);
}

#endif
