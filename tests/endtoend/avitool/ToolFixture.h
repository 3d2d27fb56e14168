// SPDX-License-Identifier: Apache-2.0
// Runs the built avitool in a folder of its own:
//
//     const ToolRun run = tool({"info", write("clip.avi", smallFile().build())});
//     EXPECT_EQ(run.status, 0);
//
// One thread.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AviBuilder.h"
#include "tests/support/TempDir.h"

namespace avitest {

using Json = nlohmann::ordered_json;

struct ToolRun {
    int status = -1;  // exit status; -1 when a signal ended it
    std::string out;
    std::string err;
};

void PrintTo(const ToolRun& run, std::ostream* out);

// Where the tool's standard output goes.
enum class Output {
    kKept,        // to ToolRun::out
    kFull,        // a device without room
    kReaderGone,  // a pipe that nobody reads
    kClosed,      // nowhere
};

// A video track of three frames, the middle one no key frame, and a PCM track of two chunks.
// The streams' numbers are kVideo and kAudio.
AviFile smallFile();
constexpr size_t kVideo = 0;
constexpr size_t kAudio = 1;

// The CRC-32 of the bytes as the tool prints it.
std::string crcText(const Bytes& bytes);

std::vector<std::string> linesOf(const std::string& text);
// The same text with all runs of blanks made one, and none at the ends of lines.
std::string squeezed(const std::string& text);

class ToolFixture : public ::testing::Test {
  protected:
    // Writes a file into the test's folder, which is the tool's working folder; returns its name.
    std::string write(const std::string& name, const Bytes& bytes);
    std::string write(const std::string& name, const std::string& bytes);
    std::string pathOf(const std::string& name) const { return mFolder.path() / name; }

    ToolRun tool(const std::vector<std::string>& arguments, Output output = Output::kKept);
    // The same with the plug-in of failing tracks, on a file of these tracks.
    ToolRun failingTool(const std::string& command, const std::string& kinds,
                        const std::vector<std::string>& more = {});
    // Parses what the tool printed; a failure of the test and null when it is no JSON.
    static Json parsed(const ToolRun& run);

  private:
    TempDir mFolder;
};

}  // namespace avitest
