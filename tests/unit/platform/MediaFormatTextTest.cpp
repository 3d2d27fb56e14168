// SPDX-License-Identifier: Apache-2.0
//
// AMediaFormat: the text form, the key strings and the status codes.

#include <gtest/gtest.h>
#include <media/NdkMediaError.h>
#include <media/NdkMediaFormat.h>

#include <string>

namespace {

class MediaFormatText : public ::testing::Test {
  protected:
    ~MediaFormatText() override { AMediaFormat_delete(mFormat); }

    AMediaFormat* const mFormat = AMediaFormat_new();
};

TEST_F(MediaFormatText, EachTypeHasItsWording) {
    AMediaFormat_setInt32(mFormat, "a", 1);
    AMediaFormat_setInt64(mFormat, "b", -2);
    AMediaFormat_setFloat(mFormat, "c", 1.5f);
    AMediaFormat_setDouble(mFormat, "d", 2.25);
    AMediaFormat_setSize(mFormat, "e", 7);
    AMediaFormat_setRect(mFormat, "g", 1, 2, 3, 4);
    AMediaFormat_setString(mFormat, "s", "x");
    AMediaFormat_setBuffer(mFormat, "buf", "bytes", 5);
    EXPECT_STREQ(
        "a: int32(1), b: int64(-2), c: float(1.500000), d: double(2.250000), e: size_t(7), "
        "g: Rect(1, 2, 3, 4), s: string(x), buf: data}",
        AMediaFormat_toString(mFormat));
}

TEST_F(MediaFormatText, EmptyFormatIsTheClosingBrace) {
    EXPECT_STREQ("}", AMediaFormat_toString(mFormat));
}

TEST_F(MediaFormatText, ExtremeNumbersAreWhole) {
    AMediaFormat_setInt32(mFormat, "i", INT32_MIN);
    AMediaFormat_setInt64(mFormat, "l", INT64_MIN);
    AMediaFormat_setSize(mFormat, "z", SIZE_MAX);
    AMediaFormat_setRect(mFormat, "r", -1, -2, INT32_MIN, INT32_MAX);
    EXPECT_STREQ(
        "i: int32(-2147483648), l: int64(-9223372036854775808), z: size_t(18446744073709551615), "
        "r: Rect(-1, -2, -2147483648, 2147483647)}",
        AMediaFormat_toString(mFormat));
}

TEST_F(MediaFormatText, ReplacedEntryKeepsItsPosition) {
    AMediaFormat_setInt32(mFormat, "a", 1);
    AMediaFormat_setInt32(mFormat, "b", 2);
    AMediaFormat_setString(mFormat, "a", "new type");
    EXPECT_STREQ("a: string(new type), b: int32(2)}", AMediaFormat_toString(mFormat));
}

TEST_F(MediaFormatText, CopyKeepsTheOrder) {
    AMediaFormat_setInt32(mFormat, "z", 1);
    AMediaFormat_setInt32(mFormat, "a", 2);
    AMediaFormat* copy = AMediaFormat_new();
    AMediaFormat_copy(copy, mFormat);
    EXPECT_STREQ("z: int32(1), a: int32(2)}", AMediaFormat_toString(copy));
    AMediaFormat_delete(copy);
}

TEST_F(MediaFormatText, LongStringsAreNotCut) {
    const std::string text(5000, 'y');
    AMediaFormat_setString(mFormat, "s", text.c_str());
    EXPECT_EQ("s: string(" + text + ")}", AMediaFormat_toString(mFormat));
}

TEST_F(MediaFormatText, TextOutlivesChangesOfTheFormat) {
    AMediaFormat_setInt32(mFormat, "a", 1);
    const char* text = AMediaFormat_toString(mFormat);
    AMediaFormat_setInt32(mFormat, "a", 2);
    EXPECT_STREQ("a: int32(1)}", text);
    AMediaFormat_clear(mFormat);
    EXPECT_STREQ("a: int32(1)}", text);
}

struct KeyText {
    const char* key;
    const char* text;
};

class MediaFormatKey : public ::testing::TestWithParam<KeyText> {};

TEST_P(MediaFormatKey, HasThePublishedString) {
    EXPECT_STREQ(GetParam().text, GetParam().key);
}

// The names that an extractor and the framework exchange.
const KeyText kKeys[] = {
    {AMEDIAFORMAT_KEY_MIME, "mime"},
    {AMEDIAFORMAT_KEY_TRACK_ID, "track-id"},
    {AMEDIAFORMAT_KEY_WIDTH, "width"},
    {AMEDIAFORMAT_KEY_HEIGHT, "height"},
    {AMEDIAFORMAT_KEY_DISPLAY_WIDTH, "display-width"},
    {AMEDIAFORMAT_KEY_DISPLAY_HEIGHT, "display-height"},
    {AMEDIAFORMAT_KEY_FRAME_RATE, "frame-rate"},
    {AMEDIAFORMAT_KEY_DURATION, "durationUs"},
    {AMEDIAFORMAT_KEY_THUMBNAIL_TIME, "thumbnail-time"},
    {AMEDIAFORMAT_KEY_MAX_INPUT_SIZE, "max-input-size"},
    {AMEDIAFORMAT_KEY_LANGUAGE, "language"},
    {AMEDIAFORMAT_KEY_SAR_WIDTH, "sar-width"},
    {AMEDIAFORMAT_KEY_SAR_HEIGHT, "sar-height"},
    {AMEDIAFORMAT_KEY_CHANNEL_COUNT, "channel-count"},
    {AMEDIAFORMAT_KEY_SAMPLE_RATE, "sample-rate"},
    {AMEDIAFORMAT_KEY_BIT_RATE, "bitrate"},
    {AMEDIAFORMAT_KEY_CSD_0, "csd-0"},
    {AMEDIAFORMAT_KEY_CSD_1, "csd-1"},
    {AMEDIAFORMAT_KEY_CSD_AVC, "csd-avc"},
    {AMEDIAFORMAT_KEY_CSD_HEVC, "csd-hevc"},
    {AMEDIAFORMAT_KEY_ESDS, "esds"},
    {AMEDIAFORMAT_KEY_AAC_PROFILE, "aac-profile"},
    {AMEDIAFORMAT_KEY_IS_ADTS, "is-adts"},
    {AMEDIAFORMAT_KEY_TIME_US, "timeUs"},
    {AMEDIAFORMAT_KEY_TARGET_TIME, "target-time"},
    {AMEDIAFORMAT_KEY_IS_SYNC_FRAME, "is-sync-frame"},
    {AMEDIAFORMAT_KEY_BITS_PER_SAMPLE, "bits-per-sample"},
    {AMEDIAFORMAT_KEY_TITLE, "title"},
    {AMEDIAFORMAT_KEY_ALBUM, "album"},
    {AMEDIAFORMAT_KEY_ALBUMARTIST, "albumartist"},
    {AMEDIAFORMAT_KEY_GENRE, "genre"},
    {AMEDIAFORMAT_KEY_YEAR, "year"},
};

std::string lettersOf(const ::testing::TestParamInfo<KeyText>& info) {
    std::string name;
    for (const char* c = info.param.text; *c != '\0'; ++c)
        name += *c == '-' ? '_' : *c;
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, MediaFormatKey, ::testing::ValuesIn(kKeys), lettersOf);

TEST(MediaStatus, GeneralCodesHaveThePublishedValues) {
    EXPECT_EQ(0, AMEDIA_OK);
    EXPECT_EQ(-10000, AMEDIA_ERROR_UNKNOWN);
    EXPECT_EQ(-10001, AMEDIA_ERROR_MALFORMED);
    EXPECT_EQ(-10002, AMEDIA_ERROR_UNSUPPORTED);
    EXPECT_EQ(-10003, AMEDIA_ERROR_INVALID_OBJECT);
    EXPECT_EQ(-10004, AMEDIA_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(-10005, AMEDIA_ERROR_INVALID_OPERATION);
    EXPECT_EQ(-10006, AMEDIA_ERROR_END_OF_STREAM);
    EXPECT_EQ(-10007, AMEDIA_ERROR_IO);
    EXPECT_EQ(-10008, AMEDIA_ERROR_WOULD_BLOCK);
}

TEST(MediaStatus, CodecAndSubsystemCodesHaveThePublishedValues) {
    EXPECT_EQ(1100, AMEDIACODEC_ERROR_INSUFFICIENT_RESOURCE);
    EXPECT_EQ(1101, AMEDIACODEC_ERROR_RECLAIMED);
    EXPECT_EQ(-20001, AMEDIA_DRM_NOT_PROVISIONED);
    EXPECT_EQ(-20009, AMEDIA_DRM_LICENSE_EXPIRED);
    EXPECT_EQ(-30001, AMEDIA_IMGREADER_NO_BUFFER_AVAILABLE);
    EXPECT_EQ(-30005, AMEDIA_IMGREADER_IMAGE_NOT_LOCKED);
}

}  // namespace
