// SPDX-License-Identifier: Apache-2.0
#include "service/FileSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace android::service {

namespace {

// An open descriptor until release() is called.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) : mDescriptor(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (mDescriptor >= 0) close(mDescriptor);
    }
    int get() const { return mDescriptor; }
    int release() { return std::exchange(mDescriptor, -1); }

  private:
    int mDescriptor = -1;
};

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw SourceError(path + ": " + reason);
}

std::string lastError() {
    return std::generic_category().message(errno);
}

}  // namespace

FileSource::FileSource(const std::string& path) {
    // Non-blocking: opening a pipe that nobody writes to must not hang.
    Descriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (descriptor.get() < 0) fail(path, lastError());

    struct stat64 status {};
    if (fstat64(descriptor.get(), &status) != 0) fail(path, lastError());
    if (S_ISDIR(status.st_mode)) fail(path, "is a directory");
    if (!S_ISREG(status.st_mode)) fail(path, "is not a regular file");
    if (status.st_size == 0) fail(path, "is empty");

    mSize = status.st_size;
    mDescriptor = descriptor.release();
}

FileSource::~FileSource() {
    close(mDescriptor);
}

ssize_t FileSource::readAt(off64_t offset, void* data, size_t size) {
    if (offset < 0) return -EINVAL;
    auto* bytes = static_cast<uint8_t*>(data);
    size_t done = 0;
    while (done < size) {
        // Beyond the end there is nothing, also if the file grew since; so the sum stays in range.
        if (offset >= mSize) break;
        const auto left = static_cast<uint64_t>(mSize - offset);
        const size_t wanted = std::min<uint64_t>(size - done, left);
        const ssize_t got = pread64(mDescriptor, bytes + done, wanted, offset);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -errno;
        if (got == 0) break;  // the file shrank
        done += static_cast<size_t>(got);
        offset += got;
    }
    return static_cast<ssize_t>(done);
}

status_t FileSource::getSize(off64_t* size) {
    *size = mSize;
    return OK;
}

}  // namespace android::service
