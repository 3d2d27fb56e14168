// SPDX-License-Identifier: Apache-2.0

#include "FormatEntries.h"

#include <android/log.h>

namespace android {

namespace {

// How each type of value is worded. Floating point has six decimals, as printf's %f.
struct ValueText {
    std::string operator()(int32_t value) const { return wrapped("int32", std::to_string(value)); }
    std::string operator()(int64_t value) const { return wrapped("int64", std::to_string(value)); }
    std::string operator()(float value) const { return wrapped("float", std::to_string(value)); }
    std::string operator()(double value) const { return wrapped("double", std::to_string(value)); }
    std::string operator()(size_t value) const { return wrapped("size_t", std::to_string(value)); }

    std::string operator()(const FormatRect& value) const {
        return wrapped("Rect", std::to_string(value.left) + ", " + std::to_string(value.top) +
                                   ", " + std::to_string(value.right) + ", " +
                                   std::to_string(value.bottom));
    }

    std::string operator()(const std::string& value) const { return wrapped("string", value); }
    std::string operator()(const std::shared_ptr<FormatBytes>&) const { return "data"; }

  private:
    static std::string wrapped(const char* type, const std::string& value) {
        return std::string(type) + "(" + value + ")";
    }
};

}  // namespace

const FormatEntries::Entry* FormatEntries::findEntry(const char* name) const {
    for (const Entry& entry : mEntries) {
        if (entry.name == name) return &entry;
    }
    return nullptr;
}

void FormatEntries::set(const char* name, FormatValue value) {
    for (Entry& entry : mEntries) {
        if (entry.name != name) continue;
        entry.value = std::move(value);
        return;
    }
    if (mEntries.size() >= kMaxEntries) {
        __android_log_assert("mEntries.size() < kMaxEntries", "AMediaFormat",
                             "no room for '%s' after %zu entries", name, mEntries.size());
    }
    mEntries.push_back({name, std::move(value)});
}

std::string FormatEntries::toString() const {
    std::string text;
    for (const Entry& entry : mEntries) {
        if (!text.empty()) text += ", ";
        text += entry.name + ": " + std::visit(ValueText(), entry.value);
    }
    return text + "}";
}

}  // namespace android
