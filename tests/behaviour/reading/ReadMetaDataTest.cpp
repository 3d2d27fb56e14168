// SPDX-License-Identifier: Apache-2.0
//
// The metadata that a buffer carries: what is set, and that nothing of its last use is left.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class ReadMetaData : public ReadingTest {
  protected:
    // The text of the metadata of each sample of the first track.
    std::vector<std::string> metaDataOf(const AviFile& avi) {
        AviFile copy = avi;
        openFile(copy.build());
        StartedTrack started(track(0));
        std::vector<std::string> result;
        for (ReadResult read = started.read(); read.buffer; read = started.read())
            result.push_back(read.buffer.metaData().toString());
        return result;
    }
};

TEST_F(ReadMetaData, KeyFrameHasTimeAndSyncFlag) {
    EXPECT_EQ(metaDataOf(fileOf(mjpegStream(), {patternBytes(30), patternBytes(40)})),
              (std::vector<std::string>{"timeUs: int64(0), is-sync-frame: int32(1)}",
                                        "timeUs: int64(40000), is-sync-frame: int32(1)}"}));
}

TEST_F(ReadMetaData, OtherFrameHasTimeOnly) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(video, patternBytes(30), kNoFlags);
    EXPECT_EQ(metaDataOf(avi), std::vector<std::string>{"timeUs: int64(0)}"});
}

TEST_F(ReadMetaData, AudioIsSyncWhateverItsIndexSays) {
    AviFile avi;
    const size_t audio = avi.addStream(alawStream());
    avi.addChunk(audio, patternBytes(30), kNoFlags);
    EXPECT_EQ(metaDataOf(avi),
              std::vector<std::string>{"timeUs: int64(0), is-sync-frame: int32(1)}"});
}

TEST_F(ReadMetaData, SubtitlesAreNotSync) {
    EXPECT_EQ(metaDataOf(fileOf(subtitleStream(), {subtitleChunk("00:00:01.000", "00:00:02.000")})),
              std::vector<std::string>{"timeUs: int64(1000000)}"});
}

TEST_F(ReadMetaData, ConvertedPcmHasTimeAndSyncFlag) {
    for (const uint16_t bits : {8, 24, 32}) {
        SCOPED_TRACE(bits);
        EXPECT_EQ(metaDataOf(fileOf(pcmStream(1, 8000, bits), {patternBytes(24)})),
                  std::vector<std::string>{"timeUs: int64(0), is-sync-frame: int32(1)}"});
    }
}

TEST_F(ReadMetaData, KeysOfTheLastUseOfABufferAreCleared) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(video, patternBytes(30), kKey);
    avi.addChunk(video, patternBytes(40), kNoFlags);
    openFile(avi.build());
    StartedTrack started(track(0));

    ReadResult first = started.read();
    AMediaFormat* meta = first.buffer.metaData().get();
    AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TARGET_TIME, 5);
    AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, "of the last user");
    const uint8_t* base = first.buffer.base();
    first.buffer.release();

    const ReadResult second = started.read();
    ASSERT_EQ(second.buffer.base(), base) << "the test needs the same buffer again";
    EXPECT_EQ(second.buffer.metaData().toString(), "timeUs: int64(40000)}");
}

TEST_F(ReadMetaData, RangeOfTheLastUseOfABufferIsReplaced) {
    openStream(alawStream(), {patternBytes(100), patternBytes(40, 2)});
    StartedTrack started(track(0));
    ReadResult first = started.read();
    first.buffer.setRange(50, 3);
    first.buffer.release();

    EXPECT_EQ(started.sample().bytes, patternBytes(40, 2));
}

}  // namespace
}  // namespace avitest
