// SPDX-License-Identifier: Apache-2.0
#include "service/FileSource.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <limits>

#include "tests/support/TempDir.h"
#include "tests/unit/service/RunThreads.h"

namespace android::service {
namespace {

constexpr off64_t kGiB = off64_t{1} << 30;
constexpr uid_t kNobody = 65534;

class FileSourceTest : public ::testing::Test {
  protected:
    // The message with which opening fails; empty if it does not.
    static std::string errorOf(const std::string& path) {
        try {
            FileSource source(path);
            return "";
        } catch (const SourceError& error) {
            return error.what();
        }
    }
    static std::string read(FileSource& source, off64_t offset, size_t size) {
        std::string bytes(size, '?');
        const ssize_t got = source.readAt(offset, &bytes[0], size);
        return got < 0 ? "error " + std::to_string(got) : bytes.substr(0, static_cast<size_t>(got));
    }
    // A file of `size` bytes that are all zeros, and take no room, but for a mark.
    std::string sparseFile(off64_t size, off64_t markOffset, const std::string& mark) {
        std::string path = mDir.write("sparse", "");
        const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(0, ftruncate64(file, size));
        EXPECT_EQ(static_cast<ssize_t>(mark.size()),
                  pwrite64(file, mark.data(), mark.size(), markOffset));
        close(file);
        return path;
    }
    avitest::TempDir mDir;
};

TEST_F(FileSourceTest, SizeIsThatOfTheFile) {
    FileSource source(mDir.write("file", "0123456789"));
    off64_t size = 0;
    EXPECT_EQ(OK, source.getSize(&size));
    EXPECT_EQ(10, size);
}

TEST_F(FileSourceTest, IsALocalFile) {
    FileSource source(mDir.write("file", "x"));
    EXPECT_EQ(DataSource::kIsLocalFileSource, source.flags());
}

TEST_F(FileSourceTest, ReadInTheMiddle) {
    FileSource source(mDir.write("file", "0123456789"));
    EXPECT_EQ("345", read(source, 3, 3));
}

TEST_F(FileSourceTest, ReadOverTheEndIsShort) {
    FileSource source(mDir.write("file", "0123456789"));
    EXPECT_EQ("89", read(source, 8, 5));
}

TEST_F(FileSourceTest, ReadAtAndBeyondTheEndIsEmpty) {
    FileSource source(mDir.write("file", "0123456789"));
    EXPECT_EQ("", read(source, 10, 5));
    EXPECT_EQ("", read(source, std::numeric_limits<off64_t>::max(), 5));
}

TEST_F(FileSourceTest, NegativeOffsetIsAnError) {
    FileSource source(mDir.write("file", "0123456789"));
    char byte = 0;
    EXPECT_EQ(-EINVAL, source.readAt(-1, &byte, 1));
}

TEST_F(FileSourceTest, BytesBeyondFourGiBAreRead) {
    FileSource source(sparseFile(5 * kGiB, 4 * kGiB + 123, "mark"));
    off64_t size = 0;
    EXPECT_EQ(OK, source.getSize(&size));
    EXPECT_EQ(5 * kGiB, size);
    EXPECT_EQ("mark", read(source, 4 * kGiB + 123, 4));
    EXPECT_EQ(std::string(4, '\0'), read(source, 123, 4));
}

TEST_F(FileSourceTest, ReadAcrossFourGiB) {
    FileSource source(sparseFile(5 * kGiB, 4 * kGiB - 2, "mark"));
    EXPECT_EQ("mark", read(source, 4 * kGiB - 2, 4));
}

TEST_F(FileSourceTest, ReadOverTheEndBeyondFourGiBIsShort) {
    FileSource source(sparseFile(5 * kGiB, 5 * kGiB - 2, "ab"));
    EXPECT_EQ("ab", read(source, 5 * kGiB - 2, 100));
}

TEST_F(FileSourceTest, FileThatGrowsKeepsItsSize) {
    const std::string path = mDir.write("file", "0123");
    FileSource source(path);
    ASSERT_EQ(0, truncate64(path.c_str(), 100));
    off64_t size = 0;
    EXPECT_EQ(OK, source.getSize(&size));
    EXPECT_EQ(4, size);
    EXPECT_EQ("23", read(source, 2, 10));
}

TEST_F(FileSourceTest, FileThatShrinksReadsShort) {
    const std::string path = mDir.write("file", "0123456789");
    FileSource source(path);
    ASSERT_EQ(0, truncate64(path.c_str(), 5));
    EXPECT_EQ("34", read(source, 3, 7));
    EXPECT_EQ("", read(source, 6, 4));
}

TEST_F(FileSourceTest, DeletedFileStaysReadable) {
    const std::string path = mDir.write("file", "0123");
    FileSource source(path);
    ASSERT_EQ(0, unlink(path.c_str()));
    EXPECT_EQ("0123", read(source, 0, 4));
}

TEST_F(FileSourceTest, SymbolicLinkIsFollowed) {
    const std::string path = mDir.write("file", "0123");
    std::filesystem::create_symlink(path, mDir.path() / "link");
    FileSource source(mDir.path() / "link");
    EXPECT_EQ("0123", read(source, 0, 4));
}

TEST_F(FileSourceTest, SeveralThreadsReadAtOnce) {
    std::string bytes;
    for (int i = 0; i < 1000; ++i) {
        bytes += static_cast<char>('a' + i % 26);
    }
    FileSource source(mDir.write("file", bytes));
    std::atomic<int> wrong{0};
    runThreads(4, [&](int) {
        for (size_t offset = 0; offset < bytes.size(); ++offset) {
            wrong += read(source, static_cast<off64_t>(offset), 7) != bytes.substr(offset, 7);
        }
    });
    EXPECT_EQ(0, wrong);
}

TEST_F(FileSourceTest, MissingFileIsRefused) {
    const std::string path = mDir.path() / "missing";
    EXPECT_EQ(path + ": No such file or directory", errorOf(path));
}

TEST_F(FileSourceTest, EmptyPathIsRefused) {
    EXPECT_EQ(": No such file or directory", errorOf(""));
}

TEST_F(FileSourceTest, DirectoryIsRefused) {
    const std::string path = mDir.path();
    EXPECT_EQ(path + ": is a directory", errorOf(path));
}

TEST_F(FileSourceTest, EmptyFileIsRefused) {
    const std::string path = mDir.write("empty", "");
    EXPECT_EQ(path + ": is empty", errorOf(path));
}

TEST_F(FileSourceTest, PipeIsRefusedWithoutWaitingForAWriter) {
    const std::string path = mDir.path() / "pipe";
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_EQ(path + ": is not a regular file", errorOf(path));
}

TEST_F(FileSourceTest, DeviceIsRefused) {
    EXPECT_EQ("/dev/null: is not a regular file", errorOf("/dev/null"));
}

TEST_F(FileSourceTest, UnreadableFileIsRefused) {
    const std::string path = mDir.write("unreadable", "x");
    ASSERT_EQ(0, chmod(path.c_str(), 0));
    // Root may read everything, so the attempt is made as somebody else.
    const bool root = geteuid() == 0;
    if (root) {
        ASSERT_EQ(0, chmod(mDir.path().c_str(), 0755));
        ASSERT_EQ(0, seteuid(kNobody));
    }
    const std::string error = errorOf(path);
    if (root) {
        ASSERT_EQ(0, seteuid(0));
    }
    EXPECT_EQ(path + ": Permission denied", error);
}

}  // namespace
}  // namespace android::service
