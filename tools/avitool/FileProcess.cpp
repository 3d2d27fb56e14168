// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/FileProcess.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <system_error>

#include "tools/avitool/CommandParts.h"
#include "tools/avitool/PluginLog.h"

namespace avitool {

namespace {

using Texts = std::vector<std::string>;

// Exit status of a child whose one text is a reason; all others than 0 come from elsewhere.
constexpr int kReasonStatus = 3;

[[noreturn]] void failWith(const char* what) {
    throw FileError(fmt::format("{}: {}", what, std::generic_category().message(errno)));
}

// A file descriptor, closed with the object.
class Descriptor {
  public:
    explicit Descriptor(int value) : mValue(value) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { reset(); }
    int get() const { return mValue; }
    void reset() {
        if (mValue >= 0) close(mValue);
        mValue = -1;
    }

  private:
    int mValue;
};

// The same open file under a number that no standard stream has: one that is closed would otherwise
// get a pipe's end, and the log would go there.
int aboveStandardStreams(int descriptor) {
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(descriptor);
    errno = error;
    return moved;
}

bool sendBytes(int descriptor, const void* data, size_t size) {
    const char* next = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = write(descriptor, next, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        next += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

// u64 length | bytes, for each
bool sendTexts(int descriptor, const Texts& texts) {
    for (const std::string& text : texts) {
        const uint64_t size = text.size();
        if (!sendBytes(descriptor, &size, sizeof(size))) return false;
        if (!sendBytes(descriptor, text.data(), text.size())) return false;
    }
    return true;
}

std::string receiveAll(int descriptor) {
    std::string bytes;
    std::array<char, 65536> part{};
    while (true) {
        const ssize_t length = read(descriptor, part.data(), part.size());
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) return bytes;
        bytes.append(part.data(), static_cast<size_t>(length));
    }
}

// None for bytes that end within a text.
std::optional<Texts> splitTexts(std::string_view bytes) {
    Texts texts;
    while (!bytes.empty()) {
        uint64_t size = 0;
        if (bytes.size() < sizeof(size)) return std::nullopt;
        memcpy(&size, bytes.data(), sizeof(size));
        bytes.remove_prefix(sizeof(size));
        if (bytes.size() < size) return std::nullopt;
        texts.emplace_back(bytes.substr(0, size));
        bytes.remove_prefix(size);
    }
    return texts;
}

// Without the handlers and buffers of the parent, which has them too.
[[noreturn]] void finish(int descriptor, int status, const Texts& texts) {
    _exit(sendTexts(descriptor, texts) ? status : EXIT_FAILURE);
}

[[noreturn]] void runChild(int descriptor, const std::function<Texts()>& work) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    pluginlog::setAbortAction(
        [descriptor](const std::string& reason) { finish(descriptor, kReasonStatus, {reason}); });
    Texts texts;
    const std::optional<std::string> problem = problemOf([&] { texts = work(); });
    if (problem) finish(descriptor, kReasonStatus, {*problem});
    finish(descriptor, EXIT_SUCCESS, texts);
}

int waitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) failWith("its process is lost");
    }
    return status;
}

Texts resultOf(int status, std::string_view bytes) {
    if (WIFSIGNALED(status)) {
        throw FileError(fmt::format("the plug-in crashes: {}", strsignal(WTERMSIG(status))));
    }
    const std::optional<Texts> texts = splitTexts(bytes);
    const int code = WEXITSTATUS(status);
    if (code == EXIT_SUCCESS && texts) return *texts;
    if (code == kReasonStatus && texts && !texts->empty()) throw FileError(texts->front());
    throw FileError(fmt::format("its process ends with status {}", code));
}

}  // namespace

Texts runInProcess(const std::function<Texts()>& work) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) failWith("cannot be given a process");
    const Descriptor reader(aboveStandardStreams(ends[0]));
    Descriptor writer(aboveStandardStreams(ends[1]));
    const bool open = reader.get() >= 0 && writer.get() >= 0;
    const pid_t child = open ? fork() : -1;
    if (child < 0) failWith("cannot be given a process");
    if (child == 0) runChild(writer.get(), work);
    writer.reset();  // so that the child's end is the last one
    const std::string bytes = receiveAll(reader.get());
    return resultOf(waitFor(child), bytes);
}

}  // namespace avitool
