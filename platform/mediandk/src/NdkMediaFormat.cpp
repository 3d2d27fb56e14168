// SPDX-License-Identifier: Apache-2.0

#include <media/NdkMediaFormat.h>

#include <map>
#include <memory>
#include <string>

#include "FormatEntries.h"

using android::FormatBytes;
using android::FormatEntries;
using android::FormatRect;
using android::FormatValue;

struct AMediaFormat {
    FormatEntries mEntries;
    std::string mText;
    // Each getString makes a new string, so that the memory checkers see a caller that keeps the
    // pointer for too long, which on the device dangles.
    std::map<std::string, std::unique_ptr<const std::string>> mStrings;
};

namespace {

template <typename T>
const T* find(const AMediaFormat* format, const char* name) {
    return format != nullptr && name != nullptr ? format->mEntries.find<T>(name) : nullptr;
}

template <typename T>
bool get(const AMediaFormat* format, const char* name, T* out) {
    const T* value = find<T>(format, name);
    if (value == nullptr) return false;
    *out = *value;
    return true;
}

void set(AMediaFormat* format, const char* name, FormatValue value) {
    if (format == nullptr || name == nullptr) return;
    format->mEntries.set(name, std::move(value));
}

}  // namespace

AMediaFormat* AMediaFormat_new() {
    return new AMediaFormat;
}

media_status_t AMediaFormat_delete(AMediaFormat* format) {
    delete format;
    return AMEDIA_OK;
}

const char* AMediaFormat_toString(AMediaFormat* format) {
    format->mText = format->mEntries.toString();
    return format->mText.c_str();
}

bool AMediaFormat_getInt32(AMediaFormat* format, const char* name, int32_t* out) {
    return get(format, name, out);
}

bool AMediaFormat_getInt64(AMediaFormat* format, const char* name, int64_t* out) {
    return get(format, name, out);
}

bool AMediaFormat_getFloat(AMediaFormat* format, const char* name, float* out) {
    return get(format, name, out);
}

bool AMediaFormat_getDouble(AMediaFormat* format, const char* name, double* out) {
    return get(format, name, out);
}

bool AMediaFormat_getSize(AMediaFormat* format, const char* name, size_t* out) {
    return get(format, name, out);
}

bool AMediaFormat_getRect(AMediaFormat* format, const char* name, int32_t* left, int32_t* top,
                          int32_t* right, int32_t* bottom) {
    const FormatRect* rect = find<FormatRect>(format, name);
    if (rect == nullptr) return false;
    *left = rect->left;
    *top = rect->top;
    *right = rect->right;
    *bottom = rect->bottom;
    return true;
}

bool AMediaFormat_getBuffer(AMediaFormat* format, const char* name, void** data, size_t* size) {
    const auto* bytes = find<std::shared_ptr<FormatBytes>>(format, name);
    if (bytes == nullptr) return false;
    *data = (*bytes)->data();
    *size = (*bytes)->size();
    return true;
}

bool AMediaFormat_getString(AMediaFormat* format, const char* name, const char** out) {
    const std::string* value = find<std::string>(format, name);
    if (value == nullptr) return false;
    auto& cached = format->mStrings[name];
    cached = std::make_unique<const std::string>(*value);
    *out = cached->c_str();
    return true;
}

void AMediaFormat_setInt32(AMediaFormat* format, const char* name, int32_t value) {
    set(format, name, value);
}

void AMediaFormat_setInt64(AMediaFormat* format, const char* name, int64_t value) {
    set(format, name, value);
}

void AMediaFormat_setFloat(AMediaFormat* format, const char* name, float value) {
    set(format, name, value);
}

void AMediaFormat_setDouble(AMediaFormat* format, const char* name, double value) {
    set(format, name, value);
}

void AMediaFormat_setSize(AMediaFormat* format, const char* name, size_t value) {
    set(format, name, value);
}

void AMediaFormat_setRect(AMediaFormat* format, const char* name, int32_t left, int32_t top,
                          int32_t right, int32_t bottom) {
    set(format, name, FormatRect{left, top, right, bottom});
}

void AMediaFormat_setString(AMediaFormat* format, const char* name, const char* value) {
    if (value == nullptr) return;
    set(format, name, std::string(value));
}

void AMediaFormat_setBuffer(AMediaFormat* format, const char* name, const void* data, size_t size) {
    if (data == nullptr && size != 0) return;
    const auto* bytes = static_cast<const uint8_t*>(data);
    set(format, name, std::make_shared<FormatBytes>(bytes, bytes + size));
}

void AMediaFormat_clear(AMediaFormat* format) {
    format->mEntries.clear();
}

media_status_t AMediaFormat_copy(AMediaFormat* to, AMediaFormat* from) {
    if (to == nullptr || from == nullptr) return AMEDIA_ERROR_INVALID_PARAMETER;
    // Before the assignment, so that a format copied onto itself ends up empty.
    to->mEntries.clear();
    to->mEntries = from->mEntries;
    return AMEDIA_OK;
}
