// SPDX-License-Identifier: Apache-2.0
#include "service/DataSource.h"

#include <gtest/gtest.h>

#include <cstring>

namespace android::service {
namespace {

// Answers what it was told to and remembers what it was asked.
class ScriptedSource : public DataSource {
  public:
    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        askedOffset = offset;
        askedData = data;
        askedSize = size;
        return readResult;
    }
    status_t getSize(off64_t* size) override {
        if (sizeStatus == OK) *size = length;
        return sizeStatus;
    }
    uint32_t flags() override { return kWantsPrefetching | kIsHttpBasedSource; }
    std::optional<std::string> getUri() override { return uri; }

    ssize_t readResult = 0;
    off64_t length = 0;
    status_t sizeStatus = OK;
    std::optional<std::string> uri;
    off64_t askedOffset = 0;
    void* askedData = nullptr;
    size_t askedSize = 0;
};

class PlainDataSourceTest : public ::testing::Test {
  protected:
    ScriptedSource mSource;
    PlainDataSource mPlain{mSource};
    CDataSource* mRecord = mPlain.get();
};

TEST_F(PlainDataSourceTest, ReadAtPassesEveryArgument) {
    char target = 0;
    mSource.readResult = 5;
    EXPECT_EQ(5, mRecord->readAt(mRecord->handle, 0x123456789abcLL, &target, 77));
    EXPECT_EQ(0x123456789abcLL, mSource.askedOffset);
    EXPECT_EQ(&target, mSource.askedData);
    EXPECT_EQ(77u, mSource.askedSize);
}

TEST_F(PlainDataSourceTest, ReadAtPassesErrors) {
    char target = 0;
    mSource.readResult = -EIO;
    EXPECT_EQ(-EIO, mRecord->readAt(mRecord->handle, 0, &target, 1));
}

TEST_F(PlainDataSourceTest, GetSizePassesSizesBeyondFourGiB) {
    mSource.length = 0x1000000000LL;
    off64_t size = 0;
    EXPECT_EQ(OK, mRecord->getSize(mRecord->handle, &size));
    EXPECT_EQ(0x1000000000LL, size);
}

TEST_F(PlainDataSourceTest, FailedGetSizeLeavesTheOutputAlone) {
    mSource.sizeStatus = INVALID_OPERATION;
    off64_t size = 42;
    EXPECT_EQ(INVALID_OPERATION, mRecord->getSize(mRecord->handle, &size));
    EXPECT_EQ(42, size);
}

TEST_F(PlainDataSourceTest, FlagsArePassed) {
    EXPECT_EQ(9u, mRecord->flags(mRecord->handle));
}

TEST_F(PlainDataSourceTest, NoUriIsFalse) {
    char text[8] = "before";
    EXPECT_FALSE(mRecord->getUri(mRecord->handle, text, sizeof(text)));
    EXPECT_STREQ("before", text);
}

TEST_F(PlainDataSourceTest, UriThatJustFitsIsCopiedWithItsTerminator) {
    mSource.uri = "a://bcd";
    char text[8] = {};
    EXPECT_TRUE(mRecord->getUri(mRecord->handle, text, sizeof(text)));
    EXPECT_STREQ("a://bcd", text);
}

TEST_F(PlainDataSourceTest, UriThatIsOneTooLongIsNotCopied) {
    mSource.uri = "a://bcde";
    char text[8] = "before";
    EXPECT_FALSE(mRecord->getUri(mRecord->handle, text, sizeof(text)));
    EXPECT_STREQ("before", text);
}

}  // namespace
}  // namespace android::service
