// SPDX-License-Identifier: Apache-2.0
//
// Bitmap subtitles carry their time as text in front of the picture.

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class ReadSubtitle : public ReadingTest {};

TEST_F(ReadSubtitle, TimeIsReadFromTheChunk) {
    openStream(subtitleStream(), {subtitleChunk("00:01:02.345", "00:01:04.000"),
                                  subtitleChunk("01:02:03.450", "01:02:05.000"),
                                  subtitleChunk("99:59:59.999", "99:59:59.999")});

    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{62345000, 3723450000, 359999999000}));
}

TEST_F(ReadSubtitle, ChunkIsHandedOutWithItsTimeText) {
    const Bytes chunk = subtitleChunk("00:01:02.345", "00:01:04.000");
    openStream(subtitleStream(), {chunk});

    EXPECT_EQ(readAll(0).at(0).bytes, chunk);
}

TEST_F(ReadSubtitle, SeparatorsDoNotMatter) {
    openStream(subtitleStream(), {bytesOf("x00x01x02x345")});

    EXPECT_EQ(readAll(0).at(0).timeUs, 62345000);
}

TEST_F(ReadSubtitle, ChunkTooShortForATimeHasTimeZero) {
    const std::string text = "[00:01:02.345";
    for (size_t length = 1; length < text.size(); ++length) {
        SCOPED_TRACE(length);
        openStream(subtitleStream(), {bytesOf(text.substr(0, length))});
        EXPECT_EQ(readAll(0).at(0).timeUs, 0);
    }
}

// A buffer keeps the bytes of its last sample behind those of the new one.
TEST_F(ReadSubtitle, ShortChunkDoesNotTakeTheTimeOfTheOneBefore) {
    openStream(subtitleStream(), {subtitleChunk("00:01:02.345", "00:01:04.000"), bytesOf("[00:0")});

    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{62345000, 0}));
}

TEST_F(ReadSubtitle, BothCompressionsAreSubtitles) {
    openStream(videoStream("DXSA", 320, 240, 25), {subtitleChunk("00:00:01.000", "00:00:02.000")});

    EXPECT_EQ(readAll(0).at(0).timeUs, 1000000);
}

}  // namespace
}  // namespace avitest
