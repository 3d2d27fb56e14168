// SPDX-License-Identifier: Apache-2.0
#include "service/DataSource.h"

#include <cstring>

namespace android::service {

namespace {

DataSource& sourceOf(void* handle) {
    return *static_cast<DataSource*>(handle);
}

// The text must fit with its terminator, or nothing is written.
bool copyUri(void* handle, char* text, size_t capacity) {
    const std::optional<std::string> uri = sourceOf(handle).getUri();
    if (!uri || uri->size() >= capacity) return false;
    std::memcpy(text, uri->c_str(), uri->size() + 1);
    return true;
}

}  // namespace

PlainDataSource::PlainDataSource(DataSource& source) {
    mRecord.handle = &source;
    mRecord.readAt = [](void* handle, off64_t offset, void* data, size_t size) {
        return sourceOf(handle).readAt(offset, data, size);
    };
    mRecord.getSize = [](void* handle, off64_t* size) { return sourceOf(handle).getSize(size); };
    mRecord.flags = [](void* handle) { return sourceOf(handle).flags(); };
    mRecord.getUri = copyUri;
}

}  // namespace android::service
