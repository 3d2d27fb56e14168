// SPDX-License-Identifier: Apache-2.0
#include "tests/endtoend/avitool/ToolFixture.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>

namespace avitest {

namespace {

constexpr char kOutFile[] = ".stdout";
constexpr char kErrFile[] = ".stderr";

std::string contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// The emulator, if there is one, and the tool.
std::vector<std::string> toolCommand() {
    std::vector<std::string> parts;
    std::istringstream in(AVITOOL_COMMAND);
    for (std::string part; std::getline(in, part, '|');)
        parts.push_back(part);
    return parts;
}

class FileActions {
  public:
    FileActions() { posix_spawn_file_actions_init(&mActions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&mActions); }
    posix_spawn_file_actions_t* get() { return &mActions; }

    void open(int descriptor, const std::string& path) {
        constexpr mode_t kMode = 0600;
        posix_spawn_file_actions_addopen(&mActions, descriptor, path.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, kMode);
    }

  private:
    posix_spawn_file_actions_t mActions;
};

// The writing end of a pipe whose reader has gone.
class DeadPipe {
  public:
    DeadPipe() {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        close(ends[0]);
        mWriter = ends[1];
    }
    DeadPipe(const DeadPipe&) = delete;
    DeadPipe& operator=(const DeadPipe&) = delete;
    ~DeadPipe() { close(mWriter); }
    int writer() const { return mWriter; }

  private:
    int mWriter = -1;
};

int runToEnd(const std::vector<std::string>& command, FileActions& actions) {
    std::vector<char*> argv;
    for (const std::string& part : command)
        argv.push_back(const_cast<char*>(part.c_str()));
    argv.push_back(nullptr);
    pid_t child = -1;
    if (posix_spawnp(&child, argv[0], actions.get(), nullptr, argv.data(), environ) != 0) {
        throw std::runtime_error("cannot start " + command[0]);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

}  // namespace

void PrintTo(const ToolRun& run, std::ostream* out) {
    *out << "status " << run.status << "\nout:\n" << run.out << "err:\n" << run.err;
}

AviFile smallFile() {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    avi.addStream(pcmStream(2, 48000, 16));
    avi.addChunk(kVideo, bytesOf("first frame"), kKey);
    avi.addChunk(kAudio, Bytes(1920, 0x11));
    avi.addChunk(kVideo, bytesOf("second"), kNoFlags);
    avi.addChunk(kAudio, Bytes(960, 0x22));
    avi.addChunk(kVideo, bytesOf("third one"), kKey);
    return avi;
}

std::string crcText(const Bytes& bytes) {
    std::ostringstream out;
    out.width(8);
    out.fill('0');
    out << std::hex << crc32(0, bytes.data(), static_cast<uInt>(bytes.size()));
    return out.str();
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::string squeezed(const std::string& text) {
    std::string result;
    for (const std::string& line : linesOf(text)) {
        std::istringstream words(line);
        std::string joined;
        for (std::string word; words >> word;)
            joined += (joined.empty() ? "" : " ") + word;
        result += joined + "\n";
    }
    return result;
}

std::string ToolFixture::write(const std::string& name, const std::string& bytes) {
    mFolder.write(name, bytes);
    return name;
}

std::string ToolFixture::write(const std::string& name, const Bytes& bytes) {
    return write(name, std::string(bytes.begin(), bytes.end()));
}

ToolRun ToolFixture::tool(const std::vector<std::string>& arguments, Output output) {
    std::vector<std::string> command = toolCommand();
    command.insert(command.end(), arguments.begin(), arguments.end());
    FileActions actions;
    const DeadPipe pipe;
    switch (output) {
        case Output::kKept:
            actions.open(STDOUT_FILENO, pathOf(kOutFile));
            break;
        case Output::kFull:
            actions.open(STDOUT_FILENO, "/dev/full");
            break;
        case Output::kReaderGone:
            posix_spawn_file_actions_adddup2(actions.get(), pipe.writer(), STDOUT_FILENO);
            break;
        case Output::kClosed:
            posix_spawn_file_actions_addclose(actions.get(), STDOUT_FILENO);
            break;
    }
    actions.open(STDERR_FILENO, pathOf(kErrFile));
    posix_spawn_file_actions_addchdir_np(actions.get(), mFolder.path().c_str());
    ToolRun run;
    run.status = runToEnd(command, actions);
    if (output == Output::kKept) run.out = contents(pathOf(kOutFile));
    run.err = contents(pathOf(kErrFile));
    return run;
}

ToolRun ToolFixture::failingTool(const std::string& command, const std::string& kinds,
                                 const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {command, write("failing", "TEST" + kinds), "--plugin",
                                          FAILING_PLUGIN};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return tool(arguments);
}

Json ToolFixture::parsed(const ToolRun& run) {
    Json json = Json::parse(run.out, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << run.out;
    return json.is_discarded() ? Json() : json;
}

}  // namespace avitest
