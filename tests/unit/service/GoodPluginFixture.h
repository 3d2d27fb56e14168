// SPDX-License-Identifier: Apache-2.0
// Loads the plug-in of plugins/GoodPlugin.h and counts its objects. Tests check at their end that
// none of them is left.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "service/Extractor.h"
#include "service/MemorySource.h"
#include "tests/unit/service/plugins/GoodPlugin.h"

namespace android::service {

class GoodPluginTest : public ::testing::Test {
  protected:
    GoodPluginTest() {
        mLibrary = dlopen(TEST_PLUGIN_DIR "/good_extractor.so", RTLD_NOW | RTLD_LOCAL);
        void* function = dlsym(mLibrary, "goodPluginObjects");
        mObjects = reinterpret_cast<GoodPluginObjectsFunc>(function)();
    }
    ~GoodPluginTest() override {
        EXPECT_EQ(0, mObjects->metas);
        EXPECT_EQ(0, mObjects->extractors);
        EXPECT_EQ(0, mObjects->tracks);
        dlclose(mLibrary);
    }

    const GoodPluginObjects& objects() const { return *mObjects; }

    static std::vector<uint8_t> bytesOf(const std::string& text) {
        return {text.begin(), text.end()};
    }

    PluginLibrary mPlugin{TEST_PLUGIN_DIR "/good_extractor.so"};

  private:
    void* mLibrary = nullptr;
    const GoodPluginObjects* mObjects = nullptr;
};

}  // namespace android::service
