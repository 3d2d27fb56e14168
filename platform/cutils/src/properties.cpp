// SPDX-License-Identifier: Apache-2.0

#include <cutils/properties.h>
#include <errno.h>
#include <string.h>

#include <map>
#include <mutex>
#include <string>

namespace {

class PropertyStore {
  public:
    /// The empty string when unset.
    std::string get(const char* key) {
        std::lock_guard<std::mutex> lock(mLock);
        auto it = mValues.find(key);
        return it != mValues.end() ? it->second : std::string();
    }

    void set(const char* key, const char* value) {
        std::lock_guard<std::mutex> lock(mLock);
        mValues[key] = value;
    }

  private:
    std::mutex mLock;
    std::map<std::string, std::string> mValues;  // guarded by mLock
};

// Never destroyed: threads that outlive main() may still ask.
PropertyStore& store() {
    static PropertyStore* const instance = new PropertyStore;
    return *instance;
}

}  // namespace

int property_get(const char* key, char* value, const char* default_value) {
    std::string found = key != nullptr ? store().get(key) : std::string();
    if (found.empty() && default_value != nullptr) {
        found.assign(default_value, strnlen(default_value, PROPERTY_VALUE_MAX - 1));
    }
    memcpy(value, found.c_str(), found.size() + 1);
    return static_cast<int>(found.size());
}

int property_set(const char* key, const char* value) {
    if (key == nullptr || *key == '\0') return -EINVAL;
    if (value == nullptr) value = "";
    if (strlen(value) >= PROPERTY_VALUE_MAX) return -EINVAL;
    store().set(key, value);
    return 0;
}
