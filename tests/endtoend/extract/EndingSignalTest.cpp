// SPDX-License-Identifier: Apache-2.0
// `avitool extract` that is ended from outside while it writes.
#include <gmock/gmock.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "tests/endtoend/avitool/ExtractFixture.h"
#include "tests/endtoend/extract/RoundTrips.h"

namespace avitest {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

// How a process ended, as waitpid() writes it.
int waitFor(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child) throw std::runtime_error("no child");
    return status;
}

class EndingSignal : public ExtractFixture {
  protected:
    // The tool while it writes the two files of a track, which takes it 1.6 seconds.
    pid_t startedTool() {
        write("slow", std::string("SLOW") + '\x10');
        std::vector<std::string> command = splitAt('|', AVITOOL_COMMAND);
        const std::vector<std::string> arguments = {"extract",     pathOf("slow"), "-o",
                                                    pathOf("out"), "--plugin",     SLOW_PLUGIN};
        command.insert(command.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (const std::string& part : command)
            argv.push_back(const_cast<char*>(part.c_str()));
        argv.push_back(nullptr);
        pid_t child = -1;
        if (posix_spawnp(&child, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
            throw std::runtime_error("cannot start " + command[0]);
        }
        while (filesIn("out").size() < 2 && waitpid(child, nullptr, WNOHANG) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return child;
    }
};

class EachEndingSignal : public EndingSignal, public ::testing::WithParamInterface<int> {};

TEST_P(EachEndingSignal, LeavesNoFileAndIsWhatEndsTheProcess) {
    const pid_t child = startedTool();
    EXPECT_THAT(filesIn("out"), SizeIs(2));
    kill(child, GetParam());
    const int status = waitFor(child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), GetParam());
    EXPECT_THAT(filesIn("out"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, EachEndingSignal, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

// As nohup starts programs.
TEST_F(EndingSignal, ThatIsIgnoredEndsNothing) {
    std::signal(SIGHUP, SIG_IGN);
    const pid_t child = startedTool();
    std::signal(SIGHUP, SIG_DFL);
    kill(child, SIGHUP);
    const int status = waitFor(child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(filesIn("out"), (std::vector<std::string>{"slow.0.bin", "slow.0.csv"}));
}

}  // namespace
}  // namespace avitest
