// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/extract/PartialFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

namespace avitool {

namespace fs = std::filesystem;

namespace {

struct OpenNames {
    std::mutex lock;  // guards what follows
    std::set<std::string> names;
};

// Never destroyed: the process may end in any thread.
OpenNames& openNames() {
    static OpenNames* const instance = new OpenNames;
    return *instance;
}

// Needs the lock.
void removeFiles(OpenNames* open) {
    for (const std::string& name : open->names)
        unlink(name.c_str());
    open->names.clear();
}

// A signal that the process was started to ignore (nohup) stays ignored.
sigset_t endingSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            sigaddset(&set, signal);
        }
    }
    return set;
}

// The names can only be looked at under their lock, so not in a handler.
[[noreturn]] void endAtSignal(sigset_t set) {
    int signal = 0;
    while (sigwait(&set, &signal) != 0) {
    }
    OpenNames& open = openNames();
    open.lock.lock();  // and kept: no file is opened or gets its name after this
    removeFiles(&open);
    std::signal(signal, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    raise(signal);  // the one who waits for the process sees what ended it
    _exit(EXIT_FAILURE);
}

std::string reasonOf(int error) {
    return std::generic_category().message(error);
}

// A name that is short whatever the file's own is, and one that no other process chooses.
fs::path temporaryName(const fs::path& folder, unsigned attempt) {
    return folder / fmt::format(".avitool-{}-{}.part", getpid(), attempt);
}

struct OpenedTemporary {
    int descriptor = -1;
    fs::path path;
};

// Left-overs of a process that was killed may have the first names.
OpenedTemporary openTemporary(const fs::path& folder) {
    constexpr mode_t kMode = 0666;  // less what the user's mask takes away
    constexpr unsigned kMaxAttempts = 1000;
    OpenedTemporary result;
    for (unsigned attempt = 0; attempt < kMaxAttempts; ++attempt) {
        result.path = temporaryName(folder, attempt);
        result.descriptor =
            open(result.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
        if (result.descriptor >= 0 || errno != EEXIST) break;
    }
    return result;
}

}  // namespace

PartialFile::PartialFile(fs::path path) : mPath(std::move(path)) {
    OpenNames& open = openNames();
    // Held over the opening too: no file is missed by removeAll.
    const std::lock_guard<std::mutex> lock(open.lock);
    OpenedTemporary temporary = openTemporary(mPath.parent_path());
    if (temporary.descriptor < 0) {
        throw WriteError(mPath.parent_path(), "cannot be written into: " + reasonOf(errno));
    }
    mTemporary = std::move(temporary.path);
    open.names.insert(mTemporary);
    mFile = fdopen(temporary.descriptor, "wb");
    if (mFile != nullptr) return;
    const int error = errno;
    ::close(temporary.descriptor);
    unlink(mTemporary.c_str());
    open.names.erase(mTemporary);
    throw WriteError(mPath, "cannot be written: " + reasonOf(error));
}

PartialFile::~PartialFile() {
    if (mFile != nullptr) std::fclose(mFile);
    if (mTemporary.empty()) return;
    OpenNames& open = openNames();
    const std::lock_guard<std::mutex> lock(open.lock);
    unlink(mTemporary.c_str());
    open.names.erase(mTemporary);
}

void PartialFile::removeAll() {
    OpenNames& open = openNames();
    const std::lock_guard<std::mutex> lock(open.lock);
    removeFiles(&open);
}

void PartialFile::removeAllOnSignals() {
    const sigset_t set = endingSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    std::thread(endAtSignal, set).detach();
}

void PartialFile::fail(const char* what) const {
    throw WriteError(mPath, fmt::format("{}: {}", what, reasonOf(errno)));
}

void PartialFile::write(const void* data, size_t size) {
    if (std::fwrite(data, 1, size, mFile) != size) fail("cannot be written");
    mSize += size;
}

void PartialFile::replaceFront(const std::vector<uint8_t>& bytes) {
    if (std::fseek(mFile, 0, SEEK_SET) != 0) fail("cannot be written");
    if (std::fwrite(bytes.data(), 1, bytes.size(), mFile) != bytes.size()) {
        fail("cannot be written");
    }
}

void PartialFile::close() {
    if (std::fclose(std::exchange(mFile, nullptr)) != 0) fail("cannot be written");
}

void PartialFile::publish() {
    OpenNames& open = openNames();
    const std::lock_guard<std::mutex> lock(open.lock);
    if (std::rename(mTemporary.c_str(), mPath.c_str()) != 0) fail("cannot be written");
    open.names.erase(mTemporary);
    mTemporary.clear();
}

void PartialFile::withdraw() {
    unlink(mPath.c_str());
}

}  // namespace avitool
