// SPDX-License-Identifier: Apache-2.0
//
// An array of plain values that grows without exceptions: one that cannot grow stays as it is. What
// of it is in use its owner knows. Not thread-safe.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#include <memory>
#include <type_traits>

namespace android {

template <typename T>
class PlainArray {
  public:
    // Makes room for `count` values, those of before kept as far as they fit. False, and nothing
    // changed, when there is no memory for them.
    bool setCapacity(size_t count) {
        if (count == 0) {
            mValues.reset();
            return true;
        }
        if (count > SIZE_MAX / sizeof(T)) return false;
        void* const moved = realloc(mValues.get(), count * sizeof(T));
        if (moved == nullptr) return false;
        (void)mValues.release();
        mValues.reset(static_cast<T*>(moved));
        return true;
    }

    T& operator[](size_t i) { return mValues.get()[i]; }
    const T& operator[](size_t i) const { return mValues.get()[i]; }
    const T* begin() const { return mValues.get(); }

  private:
    static_assert(std::is_trivially_copyable_v<T>, "values are moved by realloc");
    struct Free {
        void operator()(T* values) const { free(values); }
    };
    std::unique_ptr<T, Free> mValues;
};

}  // namespace android
