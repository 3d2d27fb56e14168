// SPDX-License-Identifier: Apache-2.0

#include "tests/support/AviStructs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace avitest {
namespace {

using ::testing::ElementsAre;

// The 32-bit words of a payload.
std::vector<uint32_t> words(const Bytes& data) {
    EXPECT_EQ(0u, data.size() % 4);
    std::vector<uint32_t> result;
    for (size_t i = 0; i + 4 <= data.size(); i += 4) {
        result.push_back(uint32_t{data[i]} | uint32_t{data[i + 1]} << 8 |
                         uint32_t{data[i + 2]} << 16 | uint32_t{data[i + 3]} << 24);
    }
    return result;
}

TEST(MainHeader, FieldsAreWrittenInOrder) {
    MainHeader header;
    header.microSecPerFrame = 1;
    header.maxBytesPerSec = 2;
    header.paddingGranularity = 3;
    header.flags = 4;
    header.totalFrames = 5;
    header.initialFrames = 6;
    header.streams = 7;
    header.suggestedBufferSize = 8;
    header.width = 9;
    header.height = 10;
    for (uint32_t i = 0; i < 4; ++i)
        header.reserved[i] = 11 + i;
    EXPECT_THAT(words(header.toBytes()),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14));
}

TEST(MainHeader, UnsetFieldsAreZero) {
    EXPECT_THAT(words(MainHeader().toBytes()),
                ElementsAre(0, 0, 0, 0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(StreamHeader, FieldsAreWrittenInOrder) {
    StreamHeader header;
    header.type = "auds";
    header.handler = "abcd";
    header.flags = 1;
    header.priority = 2;
    header.language = 3;
    header.initialFrames = 4;
    header.scale = 5;
    header.rate = 6;
    header.start = 7;
    header.length = 8;
    header.suggestedBufferSize = 9;
    header.quality = 10;
    header.sampleSize = 11;
    header.left = -1;
    header.top = 12;
    header.right = 13;
    header.bottom = 14;
    EXPECT_THAT(header.toBytes(),
                ElementsAre('a', 'u', 'd', 's', 'a', 'b', 'c', 'd',                        //
                            1, 0, 0, 0, 2, 0, 3, 0, 4, 0, 0, 0, 5, 0, 0, 0, 6, 0, 0, 0,    //
                            7, 0, 0, 0, 8, 0, 0, 0, 9, 0, 0, 0, 10, 0, 0, 0, 11, 0, 0, 0,  //
                            0xFF, 0xFF, 12, 0, 13, 0, 14, 0));
}

TEST(StreamHeader, TakesFiftySixBytes) {
    EXPECT_EQ(56u, StreamHeader().toBytes().size());
}

TEST(BitmapInfo, FieldsAreWrittenInOrder) {
    BitmapInfo info;
    info.width = 2;
    info.height = -3;
    info.planes = 4;
    info.bitCount = 5;
    info.compression = "XVID";
    info.sizeImage = 6;
    info.xPelsPerMeter = 7;
    info.yPelsPerMeter = 8;
    info.colorsUsed = 9;
    info.colorsImportant = 10;
    info.extra = {0xAA, 0xBB};
    EXPECT_THAT(info.toBytes(),
                ElementsAre(40, 0, 0, 0, 2, 0, 0, 0, 0xFD, 0xFF, 0xFF, 0xFF, 4, 0, 5, 0,  //
                            'X', 'V', 'I', 'D', 6, 0, 0, 0, 7, 0, 0, 0, 8, 0, 0, 0,       //
                            9, 0, 0, 0, 10, 0, 0, 0, 0xAA, 0xBB));
}

TEST(WaveFormat, WithoutExtraDataTakesSixteenBytes) {
    WaveFormat format;
    format.formatTag = 0x0102;
    format.channels = 3;
    format.samplesPerSec = 0x07060504;
    format.avgBytesPerSec = 0x0B0A0908;
    format.blockAlign = 0x0D0C;
    format.bitsPerSample = 0x0F0E;
    EXPECT_THAT(format.toBytes(),
                ElementsAre(2, 1, 3, 0, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
}

TEST(WaveFormat, ExtraDataIsPrecededByItsSize) {
    WaveFormat format;
    format.extra = {7, 8, 9};
    const Bytes bytes = format.toBytes();
    EXPECT_THAT(Bytes(bytes.begin() + 16, bytes.end()), ElementsAre(3, 0, 7, 8, 9));
}

TEST(WaveFormat, ExtraSizeMayLie) {
    WaveFormat format;
    format.extraSize = 0x0201;
    format.extra = {7};
    const Bytes bytes = format.toBytes();
    EXPECT_THAT(Bytes(bytes.begin() + 16, bytes.end()), ElementsAre(1, 2, 7));
}

TEST(WaveFormat, ExtraSizeOfZeroMayStandAlone) {
    WaveFormat format;
    format.extraSize = 0;
    EXPECT_EQ(18u, format.toBytes().size());
}

TEST(ExtensibleFormat, SubFormatOfPcmIsTheTagAndTheFixedTail) {
    EXPECT_THAT(ExtensibleFormat().toBytes(),
                ElementsAre(16, 0, 3, 0, 0, 0, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,  //
                            0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71));
}

TEST(VideoProperties, FieldsAreWrittenInOrder) {
    VideoProperties properties;
    properties.formatToken = 1;
    properties.standard = 2;
    properties.verticalRefreshRate = 3;
    properties.horizontalTotalInT = 4;
    properties.verticalTotalInLines = 5;
    properties.frameAspectRatio = 0x00100009;
    properties.frameWidthInPixels = 7;
    properties.frameHeightInLines = 8;
    VideoField field;
    field.compressedHeight = 11;
    field.compressedWidth = 12;
    field.validHeight = 13;
    field.validWidth = 14;
    field.validXOffset = 15;
    field.validYOffset = 16;
    field.videoXOffsetInT = 17;
    field.videoYValidStartLine = 18;
    properties.fields = {field};
    EXPECT_THAT(words(properties.toBytes()),
                ElementsAre(1, 2, 3, 4, 5, 0x00100009, 7, 8, 1, 11, 12, 13, 14, 15, 16, 17, 18));
}

TEST(VideoProperties, FieldCountMayLie) {
    VideoProperties properties;
    properties.fields.clear();
    properties.fieldsPerFrame = 2;
    EXPECT_EQ(36u, properties.toBytes().size());
    EXPECT_EQ(2u, words(properties.toBytes()).back());
}

TEST(Idx1Entry, FieldsAreWrittenInOrder) {
    EXPECT_THAT(toBytes({{"01wb", 0x10, 0x0201, 0x0403}}),
                ElementsAre('0', '1', 'w', 'b', 0x10, 0, 0, 0, 1, 2, 0, 0, 3, 4, 0, 0));
}

TEST(StandardIndex, HeaderAndEntriesAreWrittenInOrder) {
    StandardIndex index;
    index.header.chunkId = "00dc";
    index.header.baseOffset = 0x0000000900000008;
    index.header.reserved3 = 5;
    index.entries = {{0x11, 0x22}, {0x33, 0x44 | kNotKeyBit}};
    EXPECT_THAT(index.toBytes(),
                ElementsAre(2, 0, 0, 1, 2, 0, 0, 0, '0', '0', 'd', 'c', 8, 0, 0, 0, 9, 0, 0, 0,  //
                            5, 0, 0, 0, 0x11, 0, 0, 0, 0x22, 0, 0, 0,                            //
                            0x33, 0, 0, 0, 0x44, 0, 0, 0x80));
}

TEST(SuperIndex, HeaderAndEntriesAreWrittenInOrder) {
    SuperIndex index;
    index.header.chunkId = "01wb";
    index.entries = {{0x0000000200000001, 3, 4}};
    EXPECT_THAT(index.toBytes(),
                ElementsAre(4, 0, 0, 0, 1, 0, 0, 0, '0', '1', 'w', 'b', 0, 0, 0, 0, 0, 0, 0, 0,  //
                            0, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0));
}

TEST(SuperIndex, CountOfEntriesMayLie) {
    SuperIndex index;
    index.header.entriesInUse = 3;
    EXPECT_EQ(24u, index.toBytes().size());
    EXPECT_EQ(3, index.toBytes()[4]);
}

TEST(InfoList, TagsAreTextsWithATerminator) {
    EXPECT_THAT(infoList({{"INAM", "ab"}}).toBytes(),
                ElementsAre('L', 'I', 'S', 'T', 16, 0, 0, 0, 'I', 'N', 'F', 'O',  //
                            'I', 'N', 'A', 'M', 3, 0, 0, 0, 'a', 'b', 0, 0));
}

}  // namespace
}  // namespace avitest
