// SPDX-License-Identifier: Apache-2.0
#include "service/MemorySource.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <string>

namespace android::service {
namespace {

class MemorySourceTest : public ::testing::Test {
  protected:
    // What a read gives, as text; "error" and the number if it fails.
    std::string read(off64_t offset, size_t size) {
        std::string bytes(size, '?');
        const ssize_t got = mSource.readAt(offset, &bytes[0], size);
        return got < 0 ? "error " + std::to_string(got) : bytes.substr(0, static_cast<size_t>(got));
    }
    MemorySource mSource{{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'}};
};

TEST_F(MemorySourceTest, SizeIsTheNumberOfBytes) {
    off64_t size = 0;
    EXPECT_EQ(OK, mSource.getSize(&size));
    EXPECT_EQ(10, size);
}

TEST_F(MemorySourceTest, ReadInTheMiddle) {
    EXPECT_EQ("345", read(3, 3));
}

TEST_F(MemorySourceTest, ReadOverTheEndIsShort) {
    EXPECT_EQ("89", read(8, 5));
}

TEST_F(MemorySourceTest, ReadAtTheEndIsEmpty) {
    EXPECT_EQ("", read(10, 5));
}

TEST_F(MemorySourceTest, ReadFarBeyondTheEndIsEmpty) {
    EXPECT_EQ("", read(std::numeric_limits<off64_t>::max(), 5));
}

TEST_F(MemorySourceTest, ReadOfNothingIsEmpty) {
    EXPECT_EQ("", read(3, 0));
}

TEST_F(MemorySourceTest, NegativeOffsetIsAnError) {
    char byte = 0;
    EXPECT_EQ(-EINVAL, mSource.readAt(-1, &byte, 1));
    EXPECT_EQ(-EINVAL, mSource.readAt(std::numeric_limits<off64_t>::min(), &byte, 1));
}

TEST_F(MemorySourceTest, IsNeitherLocalFileNorHasAUri) {
    EXPECT_EQ(0u, mSource.flags());
    EXPECT_EQ(std::nullopt, mSource.getUri());
}

TEST(MemorySource, EmptyOneHasNothing) {
    MemorySource source(std::vector<uint8_t>{});
    char byte = 'x';
    off64_t size = 1;
    EXPECT_EQ(OK, source.getSize(&size));
    EXPECT_EQ(0, size);
    EXPECT_EQ(0, source.readAt(0, &byte, 1));
    EXPECT_EQ('x', byte);
}

TEST(MemorySource, BorrowedBytesAreNotCopied) {
    char bytes[] = "abc";
    MemorySource source(bytes, 3);
    bytes[1] = 'X';
    char read[3] = {};
    EXPECT_EQ(3, source.readAt(0, read, sizeof(read)));
    EXPECT_EQ(0, std::memcmp("aXc", read, 3));
}

TEST(MemorySource, BorrowedNullIsEmpty) {
    MemorySource source(nullptr, 0);
    char byte = 0;
    EXPECT_EQ(0, source.readAt(0, &byte, 1));
}

}  // namespace
}  // namespace android::service
