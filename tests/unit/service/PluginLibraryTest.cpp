// SPDX-License-Identifier: Apache-2.0
#include "service/PluginLibrary.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/TempDir.h"

namespace android::service {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Kind = PluginError::Kind;

std::string pluginPath(const std::string& file) {
    return std::string(TEST_PLUGIN_DIR) + "/" + file;
}

bool isLoaded(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (library == nullptr) return false;
    dlclose(library);
    return true;
}

// Expects `path` to be refused for this reason, with a text that begins with the path.
void expectRefused(const std::string& path, Kind kind, const std::string& reason) {
    try {
        PluginLibrary library(path);
        FAIL() << path << " was taken";
    } catch (const PluginError& error) {
        EXPECT_EQ(kind, error.kind()) << error.what();
        EXPECT_THAT(error.what(), AllOf(StartsWith(path + ": "), HasSubstr(reason)));
    }
    EXPECT_FALSE(isLoaded(path));
}

TEST(PluginLibrary, GoodOneGivesItsDefinition) {
    PluginLibrary library(pluginPath("good_extractor.so"));
    EXPECT_EQ(3u, library.definition().def_version);
    EXPECT_EQ(12u, library.definition().extractor_version);
    EXPECT_STREQ("Good", library.definition().extractor_name);
    EXPECT_EQ(0xff, library.definition().extractor_uuid.b[15]);
    EXPECT_EQ(library.definition().u.v3.sniff, library.sniffer());
    EXPECT_THAT(library.supportedTypes(), ElementsAre("good", "test/good"));
    EXPECT_EQ(pluginPath("good_extractor.so"), library.path());
}

TEST(PluginLibrary, DefinitionOfVersionTwoHasNoTypes) {
    PluginLibrary library(pluginPath("version2_extractor.so"));
    EXPECT_EQ(2u, library.definition().def_version);
    EXPECT_EQ(library.definition().u.v2.sniff, library.sniffer());
    EXPECT_THAT(library.supportedTypes(), IsEmpty());
}

TEST(PluginLibrary, RelativePathIsOneFromTheCurrentFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(TEST_PLUGIN_DIR);
    EXPECT_NO_THROW(PluginLibrary("good_extractor.so"));
    std::filesystem::current_path(before);
}

TEST(PluginLibrary, LibraryIsUnloadedWithTheObject) {
    const std::string path = pluginPath("version2_extractor.so");
    {
        PluginLibrary library(path);
        EXPECT_TRUE(isLoaded(path));
    }
    EXPECT_FALSE(isLoaded(path));
}

TEST(PluginLibrary, LibraryMayBeKept) {
    // A copy, so that the other tests' libraries are not kept.
    avitest::TempDir folder;
    const std::string path = folder.path() / "kept_extractor.so";
    std::filesystem::copy_file(pluginPath("version2_extractor.so"), path);
    { PluginLibrary library(path, PluginLibrary::Unload::kNever); }
    EXPECT_TRUE(isLoaded(path));
}

TEST(PluginLibrary, OneLibraryMayBeLoadedTwice) {
    auto first = std::make_unique<PluginLibrary>(pluginPath("good_extractor.so"));
    PluginLibrary second(pluginPath("good_extractor.so"));
    first.reset();
    EXPECT_STREQ("Good", second.definition().extractor_name);
}

TEST(PluginLibrary, OtherFileNameIsRefused) {
    expectRefused(pluginPath("good_plugin.so"), Kind::kFileName, "extractor.so");
}

TEST(PluginLibrary, FileNameIsCheckedBeforeAnythingElse) {
    expectRefused("/nowhere/extractor.so.1", Kind::kFileName, "extractor.so");
}

TEST(PluginLibrary, MissingFileIsRefused) {
    expectRefused(pluginPath("missing_extractor.so"), Kind::kLoad, "No such file");
}

TEST(PluginLibrary, FileThatIsNoLibraryIsRefused) {
    avitest::TempDir folder;
    expectRefused(folder.write("text_extractor.so", "no library at all"), Kind::kLoad,
                  "cannot be loaded");
}

TEST(PluginLibrary, UnresolvedSymbolIsRefused) {
    expectRefused(pluginPath("unresolved_extractor.so"), Kind::kLoad, "nobodyDefinesThis");
}

TEST(PluginLibrary, MissingEntryPointIsRefused) {
    expectRefused(pluginPath("nosymbol_extractor.so"), Kind::kSymbol, "GETEXTRACTORDEF");
}

TEST(PluginLibrary, OlderVersionIsRefused) {
    expectRefused(pluginPath("version1_extractor.so"), Kind::kVersion, "version 1");
}

TEST(PluginLibrary, NewerVersionIsRefused) {
    expectRefused(pluginPath("version4_extractor.so"), Kind::kVersion, "version 4");
}

TEST(PluginLibrary, ZeroUuidIsRefused) {
    expectRefused(pluginPath("nouuid_extractor.so"), Kind::kUuid, "UUID");
}

TEST(PluginLibrary, NullNameIsRefused) {
    expectRefused(pluginPath("noname_extractor.so"), Kind::kName, "no name");
}

TEST(PluginLibrary, EmptyNameIsRefused) {
    expectRefused(pluginPath("emptyname_extractor.so"), Kind::kName, "no name");
}

TEST(PluginLibrary, NullSnifferIsRefused) {
    expectRefused(pluginPath("nosniffer_extractor.so"), Kind::kSniffer, "no sniffer");
}

TEST(PluginLibrary, NullSnifferOfVersionTwoIsRefused) {
    expectRefused(pluginPath("nosniffer2_extractor.so"), Kind::kSniffer, "no sniffer");
}

TEST(PluginLibrary, NullTypesListIsRefused) {
    expectRefused(pluginPath("notypes_extractor.so"), Kind::kTypes, "supported types");
}

}  // namespace
}  // namespace android::service
