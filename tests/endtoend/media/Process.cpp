// SPDX-License-Identifier: Apache-2.0

#include "tests/endtoend/media/Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

extern char** environ;

namespace avitest {

namespace {

void check(int error, const char* what) {
    if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

// A pipe whose ends close with the object. The child gets its copy of the writing end only.
class Pipe {
  public:
    Pipe() { check(pipe2(mEnds.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe"); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }

    int writeEnd() const { return mEnds[1]; }

    std::string readToEnd() {
        closeEnd(1);  // the child has the only one now, so its end is the end of the data
        std::string text;
        std::array<char, 4096> part{};
        while (true) {
            const ssize_t length = read(mEnds[0], part.data(), part.size());
            if (length == 0) return text;
            if (length > 0) {
                text.append(part.data(), static_cast<size_t>(length));
            } else if (errno != EINTR) {
                check(errno, "read");
            }
        }
    }

  private:
    void closeEnd(size_t end) {
        if (mEnds[end] >= 0) close(mEnds[end]);
        mEnds[end] = -1;
    }

    std::array<int, 2> mEnds{-1, -1};
};

// What the child's standard input and output are.
class Redirections {
  public:
    explicit Redirections(int output) {
        check(posix_spawn_file_actions_init(&mActions), "file actions");
        check(posix_spawn_file_actions_addopen(&mActions, STDIN_FILENO, "/dev/null", O_RDONLY, 0),
              "file actions");
        check(posix_spawn_file_actions_adddup2(&mActions, output, STDOUT_FILENO), "file actions");
    }
    Redirections(const Redirections&) = delete;
    Redirections& operator=(const Redirections&) = delete;
    ~Redirections() { posix_spawn_file_actions_destroy(&mActions); }

    const posix_spawn_file_actions_t* get() const { return &mActions; }

  private:
    posix_spawn_file_actions_t mActions{};
};

std::string joined(const std::vector<std::string>& arguments) {
    std::string text;
    for (const std::string& argument : arguments)
        text += (text.empty() ? "" : " ") + argument;
    return text;
}

int waitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) check(errno, "waitpid");
    }
    return status;
}

}  // namespace

std::string outputOf(const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));  // the system call's old prototype
    argv.push_back(nullptr);

    Pipe output;
    const Redirections redirections(output.writeEnd());
    pid_t child = 0;
    check(posix_spawn(&child, argv[0], redirections.get(), nullptr, argv.data(), environ),
          arguments.at(0).c_str());
    std::string text = output.readToEnd();
    const int status = waitFor(child);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("failed: " + joined(arguments) + "\n" + text);
    }
    return text;
}

}  // namespace avitest
