// SPDX-License-Identifier: Apache-2.0
// The bar that shows how far the tool is: on a terminal only, and gone in the end.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <pty.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "tests/endtoend/avitool/ExtractFixture.h"
#include "tests/endtoend/extract/RoundTrips.h"

namespace avitest {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

// What a program writes to the terminal that it is started on: its standard output and error.
std::string shownOnTerminal(const std::vector<std::string>& command) {
    std::vector<char*> argv;
    for (const std::string& part : command)
        argv.push_back(const_cast<char*>(part.c_str()));
    argv.push_back(nullptr);
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child < 0) throw std::runtime_error("no terminal");
    if (child == 0) {
        execvp(argv[0], argv.data());
        _exit(127);
    }
    std::string text;
    std::array<char, 4096> part{};
    ssize_t length = 0;
    while ((length = read(terminal, part.data(), part.size())) > 0)  // EIO when the child has gone
        text.append(part.data(), static_cast<size_t>(length));
    close(terminal);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << text;
    return text;
}

class Progress : public ExtractFixture {
  protected:
    // A file of 1.6 seconds of work.
    std::string slow(char durationTenths) {
        return write("slow", std::string("SLOW") + durationTenths);
    }
    std::vector<std::string> extraction(const std::string& file) const {
        return {"extract", pathOf(file), "-o", pathOf("out"), "--plugin", SLOW_PLUGIN};
    }
};

class TerminalProgress : public Progress {
  protected:
    // A container may come without /dev/pts.
    void SetUp() override {
        const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
        if (terminal < 0) GTEST_SKIP() << "this system offers no terminals";
        close(terminal);
    }
    std::string onTerminal(const std::vector<std::string>& arguments) {
        std::vector<std::string> command = splitAt('|', AVITOOL_COMMAND);
        command.insert(command.end(), arguments.begin(), arguments.end());
        return shownOnTerminal(command);
    }
};

TEST_F(TerminalProgress, IsABarAfterASecond) {
    const std::string text = onTerminal(extraction(slow(16)));
    EXPECT_THAT(text, HasSubstr("\rtrack 0 [####################"));
    EXPECT_THAT(text, HasSubstr("] "));
    EXPECT_THAT(text, HasSubstr(" %"));
}

TEST_F(TerminalProgress, IsWipedOutBeforeTheResults) {
    const std::string text = onTerminal(extraction(slow(16)));
    const size_t results = text.find(pathOf("out"));
    ASSERT_NE(results, std::string::npos);
    EXPECT_THAT(text.substr(0, results), EndsWith(" \r"));
    EXPECT_EQ(text.find('%', results), std::string::npos);
}

TEST_F(TerminalProgress, OfAnUnknownDurationIsTheAmount) {
    EXPECT_THAT(onTerminal(extraction(slow(0))), HasSubstr("\rtrack 0 0 MB"));
}

TEST_F(Progress, IsNotShownInAPipe) {
    const ToolRun run = tool(extraction(slow(16)));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
}

TEST_F(TerminalProgress, IsNotShownAmongTheLinesOfTheLog) {
    std::vector<std::string> arguments = extraction(slow(16));
    arguments.insert(arguments.end(), {"--log", "error"});
    EXPECT_EQ(onTerminal(arguments).find('%'), std::string::npos);
}

TEST_F(TerminalProgress, IsNotShownForShortWork) {
    write("clip.avi", smallFile().build());
    const std::string text = onTerminal({"extract", pathOf("clip.avi"), "-o", pathOf("out")});
    EXPECT_EQ(text.find('%'), std::string::npos);
    EXPECT_EQ(text.rfind(pathOf("out"), 0), 0u) << text;
}

}  // namespace
}  // namespace avitest
