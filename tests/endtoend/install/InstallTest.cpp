// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "tests/endtoend/install/InstalledTree.h"
#include "tests/endtoend/install/ToolHelp.h"
#include "tests/endtoend/media/Process.h"

namespace avitest {

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

constexpr char kClip[] = AVI_SOURCE_DIR "/samples/clip.avi";

const std::set<std::string> kLibraries = {"lib/libaviextractor.so", "lib/libcutils.so",
                                          "lib/libmediandk.ruvo.so", "lib/libmediandk.so"};

// Puts another plug-in in the place of the installed one, to tell it from the one that was built.
void replacePlugin(const InstalledTree& tree) {
    std::filesystem::copy_file(FAILING_PLUGIN, tree.prefix() / "lib" / "libaviextractor.so",
                               std::filesystem::copy_options::overwrite_existing);
}

}  // namespace

TEST(Install, GivesTheToolItsLibrariesAndItsPapers) {
    std::set<std::string> expected = {"bin/avitool", "share/bash-completion/completions/avitool",
                                      "share/fish/vendor_completions.d/avitool.fish",
                                      "share/man/man1/avitool.1",
                                      "share/zsh/site-functions/_avitool"};
    expected.insert(kLibraries.begin(), kLibraries.end());
    EXPECT_EQ(InstalledTree().files(), expected);
}

TEST(Install, TheToolShowsAFileAsTheBuiltOneDoes) {
    const std::string shown = InstalledTree().tool({"info", kClip});
    EXPECT_THAT(shown, HasSubstr("AVIExtractor"));
    EXPECT_EQ(shown, outputOfTool(AVITOOL, {"info", kClip}));
}

TEST(Install, TheToolTakesTheInstalledPlugIn) {
    const InstalledTree tree;
    replacePlugin(tree);
    EXPECT_THAT(tree.tool({"info", tree.write("file", "TESTg")}), HasSubstr("FailingExtractor"));
}

TEST(Install, TheTreeMayBeMoved) {
    InstalledTree tree;
    tree.move();
    EXPECT_EQ(tree.tool({"samples", kClip}), outputOfTool(AVITOOL, {"samples", kClip}));
    replacePlugin(tree);
    EXPECT_THAT(tree.tool({"info", tree.write("file", "TESTg")}), HasSubstr("FailingExtractor"));
}

// A path of the build would hide, as long as the build is there, that something does not find its
// libraries.
TEST(Install, ProgramsLookForLibrariesInTheTreeAndNotInTheBuild) {
    const InstalledTree tree;
    std::set<std::string> programs = kLibraries;
    programs.insert("bin/avitool");
    for (const std::string& name : programs) {
        const std::string dynamic = outputOf({AVI_READELF, "-d", tree.prefix() / name});
        EXPECT_THAT(dynamic, Not(HasSubstr(AVI_BUILD_DIR))) << name;
        EXPECT_THAT(dynamic, HasSubstr(name == "bin/avitool" ? "[$ORIGIN/../lib:" : "[$ORIGIN:"))
            << name;
    }
}

// Those that are found in no folder before the system's, so that an empty entry would take them
// from the folder in which the tool is started.
TEST(Install, ALibraryInTheCurrentFolderIsNotLoaded) {
    const TempDir folder;
    for (const char* name : {"libz.so.1", "libstdc++.so.6", "libgcc_s.so.1", "libm.so.6"})
        folder.write(name, "no library");
    const std::string shown = outputOfTool(AVITOOL, {"info", kClip});
    EXPECT_EQ(outputOfTool(AVITOOL, {"info", kClip}, folder.path()), shown);
    const InstalledTree tree;
    EXPECT_EQ(outputOfTool(tree.prefix() / "bin" / "avitool", {"info", kClip}, folder.path()),
              shown);
}

}  // namespace avitest
