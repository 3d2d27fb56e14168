// SPDX-License-Identifier: Apache-2.0
//
// The definition that the library exports.

#include <cstring>
#include <memory>

#include <dlfcn.h>

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using ::testing::ElementsAre;

using android::ExtractorDef;
using android::media_uuid_t;

const ExtractorDef& definition() {
    return pluginUnderTest().definition();
}

TEST(Definition, IsOfTheVersionWithSupportedTypes) {
    EXPECT_EQ(3u, definition().def_version);
}

TEST(Definition, ExtractorVersionIsTwo) {
    EXPECT_EQ(2u, definition().extractor_version);
}

TEST(Definition, NameHasABlankUnlikeTheExtractorsOwn) {
    EXPECT_STREQ("AVI Extractor", definition().extractor_name);
}

TEST(Definition, HasAUuid) {
    const media_uuid_t none = {};
    EXPECT_NE(0, std::memcmp(&none, &definition().extractor_uuid, sizeof(none)));
}

TEST(Definition, HasASniffer) {
    EXPECT_NE(nullptr, definition().u.v3.sniff);
}

TEST(Definition, SupportsAviAlone) {
    EXPECT_THAT(pluginUnderTest().supportedTypes(), ElementsAre("avi"));
    EXPECT_EQ(nullptr, definition().u.v3.supported_types[1]);
}

TEST(Definition, EveryCallGivesTheSame) {
    const std::unique_ptr<void, int (*)(void*)> library(
        dlopen(pluginUnderTest().path().c_str(), RTLD_NOW), dlclose);
    ASSERT_NE(nullptr, library) << dlerror();
    const auto get =
        reinterpret_cast<android::GetExtractorDef>(dlsym(library.get(), "GETEXTRACTORDEF"));
    ASSERT_NE(nullptr, get);
    const ExtractorDef first = get();
    const ExtractorDef second = get();
    EXPECT_EQ(first.def_version, second.def_version);
    EXPECT_EQ(0, std::memcmp(&first.extractor_uuid, &second.extractor_uuid, sizeof(media_uuid_t)));
    EXPECT_EQ(first.extractor_version, second.extractor_version);
    EXPECT_STREQ(first.extractor_name, second.extractor_name);
    EXPECT_EQ(first.u.v3.sniff, second.u.v3.sniff);
    EXPECT_EQ(first.u.v3.supported_types, second.u.v3.supported_types);
}

}  // namespace
}  // namespace avitest
