// SPDX-License-Identifier: Apache-2.0
//
// The entries of one AMediaFormat: named values of a fixed set of types, in order of first
// insertion. Invariant: names are unique; at most kMaxEntries of them. No locking.

#pragma once

#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace android {

struct FormatRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
};

using FormatBytes = std::vector<uint8_t>;

/// Copying a value shares its bytes, as copies of a format do.
using FormatValue = std::variant<int32_t, int64_t, float, double, size_t, FormatRect, std::string,
                                 std::shared_ptr<FormatBytes>>;

class FormatEntries {
  public:
    static constexpr size_t kMaxEntries = 256;

    /// The value of `name`, or null when it is missing or of another type. Valid until the next
    /// change of the entries.
    template <typename T>
    const T* find(const char* name) const {
        const Entry* entry = findEntry(name);
        return entry != nullptr ? std::get_if<T>(&entry->value) : nullptr;
    }

    /// Replaces the value of `name` where it stands, or adds it at the end; aborts when full.
    void set(const char* name, FormatValue value);

    void clear() { mEntries.clear(); }

    /// The entries as AMediaFormat_toString words them.
    std::string toString() const;

  private:
    struct Entry {
        std::string name;
        FormatValue value;
    };

    const Entry* findEntry(const char* name) const;

    std::vector<Entry> mEntries;
};

}  // namespace android
