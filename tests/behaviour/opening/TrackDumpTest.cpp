// SPDX-License-Identifier: Apache-2.0
//
// The dump of everything that was found out about a track, at the end of the parse while the
// extract log is on.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

using Lines = std::vector<std::string>;

class TrackDump : public LoggedFixture {
  protected:
    void openLogged(AviFile avi) {
        setProperty(kExtractLogProperty, "1");
        openFile(avi.build());
        countTracks();
    }

    // The 42 lines from "Dump Track[n]:" on, all of them verbose.
    Lines dumpOf(size_t stream) const {
        const std::vector<LogLine> lines = log();
        Lines result;
        for (size_t i = 0; i < lines.size() && result.size() < 42; ++i) {
            if (result.empty() && lines[i].text != format("Dump Track[%zu]:", stream)) continue;
            EXPECT_EQ(verbose(lines[i].text), lines[i]);
            result.push_back(lines[i].text);
        }
        EXPECT_EQ(42u, result.size());
        return result;
    }

    // The value of a field; "" when the dump has no such line.
    std::string valueOf(const std::string& field, size_t stream = 0) const {
        for (const std::string& line : dumpOf(stream)) {
            if (line.compare(0, 5 + field.size(), "    " + field + " ") != 0) continue;
            return line.substr(line.find_first_not_of(' ', 5 + field.size()));
        }
        return "";
    }
};

TEST_F(TrackDump, OfVideoIsWhole) {
    Stream stream = videoStream("MJPG", 320, 240, 30000, 1001);
    stream.header.start = 7;
    stream.header.length = 100;
    AviFile avi;
    avi.addStream(stream);
    avi.addChunk(0, patternBytes(30), kKey);
    avi.addChunk(0, patternBytes(50), kNoFlags);
    avi.addChunk(0, patternBytes(44), kKey);
    openLogged(std::move(avi));

    const Lines expected = {"Dump Track[0]:",
                            "    mScale         1001",
                            "    mRate          30000",
                            "    mFccType       vids(73646976)",
                            "    mCompression   MJPG(47504a4d)",
                            "    mBlockAlign    0",
                            "    mSampleSize    0",
                            "    mBitsPerSample 0",
                            "    mMP3Header     0",
                            "    mFormatTag      0",
                            "    mChannels       0",
                            "    mSamplesPerSec  0",
                            "    mAvgBytesPerSec 0",
                            "    mSize           0",
                            "    mBlockMode     0",
                            "    mBrokenIndex   0",
                            "    mIsRawAACData  0",
                            "    mIsVBRWise     0",
                            "    mAVCStyle      0",
                            "    mAVCSizeLength 0",
                            "    mFrameRate     29.970030",
                            "    mInvalidDataSize        0",
                            "    mInvalidSampleIdx       0",
                            "    mIsExcludingInvalidData 0",
                            "    mStartOffset       7",
                            "    mTotalSamples      3",
                            "    mTotalSyncSamples  2",
                            "    mTotalSampleSize   124",
                            "    mMaxSampleSize     50",
                            "    mMaxSyncSampleSize 44",
                            "    mThumbNailIndex    2",
                            "    mSampleOffsets.size    3",
                            "    mSampleSizes.size      3",
                            "    mSampleSyncs.size      3",
                            "    mSampleBlockSizes.size 0",
                            "    mIsAVC                  0",
                            "    mIsHEVC                 0",
                            "    mIsVorbis               0",
                            "    mINDXValid              0",
                            "    mNeedCodecData          0",
                            "    mIsIncludeExpensiveMeta 0",
                            trackFormat(0).toString()};
    EXPECT_EQ(expected, dumpOf(0));
}

TEST_F(TrackDump, OfAudioIsWhole) {
    Stream stream = audioStream(0x55, 2, 44100, 16000, 1152, 16);
    stream.header.scale = 1;
    stream.header.rate = 16000;
    stream.header.sampleSize = 1;
    stream.header.start = 5;
    stream.header.length = 1234;
    std::get<WaveFormat>(stream.format).extra = Bytes(12, 1);
    AviFile avi = videoFile();
    avi.addStream(stream);
    const Bytes header = {0xFF, 0xFB, 0x90, 0x00};
    avi.addChunk(1, Bytes(100, 0x11));  // nothing that is MPEG audio
    for (uint32_t i = 0; i < 4; ++i) {
        Bytes frame(417, 0x11);
        std::copy(header.begin(), header.end(), frame.begin());
        avi.addChunk(1, frame);
    }
    openLogged(std::move(avi));

    const Lines expected = {"Dump Track[1]:",
                            "    mScale         1",
                            "    mRate          16000",
                            "    mFccType       auds(73647561)",
                            "    mCompression   (0)",
                            "    mBlockAlign    1152",
                            "    mSampleSize    1",
                            "    mBitsPerSample 16",
                            "    mMP3Header     FFFB9000",
                            "    mFormatTag      55",
                            "    mChannels       2",
                            "    mSamplesPerSec  44100",
                            "    mAvgBytesPerSec 16000",
                            "    mSize           12",
                            "    mBlockMode     0",
                            "    mBrokenIndex   0",
                            "    mIsRawAACData  0",
                            "    mIsVBRWise     0",
                            "    mAVCStyle      0",
                            "    mAVCSizeLength 0",
                            "    mFrameRate     0.000000",
                            "    mInvalidDataSize        100",
                            "    mInvalidSampleIdx       1",
                            "    mIsExcludingInvalidData 1",
                            "    mStartOffset       5",
                            "    mTotalSamples      1234",
                            "    mTotalSyncSamples  5",
                            "    mTotalSampleSize   1768",
                            "    mMaxSampleSize     417",
                            "    mMaxSyncSampleSize 0",
                            "    mThumbNailIndex    0",
                            "    mSampleOffsets.size    5",
                            "    mSampleSizes.size      5",
                            "    mSampleSyncs.size      0",
                            "    mSampleBlockSizes.size 0",
                            "    mIsAVC                  0",
                            "    mIsHEVC                 0",
                            "    mIsVorbis               0",
                            "    mINDXValid              0",
                            "    mNeedCodecData          0",
                            "    mIsIncludeExpensiveMeta 0",
                            trackFormat(1).toString()};
    EXPECT_EQ(expected, dumpOf(1));
}

TEST_F(TrackDump, IsThereForEveryTrackInStreamOrder) {
    openLogged(twoStreamFile());
    EXPECT_EQ(2u, mLog.count("Dump Track["));
    size_t first = 0;
    size_t second = 0;
    for (size_t i = 0; i < log().size(); ++i) {
        if (log()[i].text == "Dump Track[0]:") first = i;
        if (log()[i].text == "Dump Track[1]:") second = i;
    }
    EXPECT_LT(first, second);
}

TEST_F(TrackDump, IsOnlyThereWhileTheExtractLogIsOn) {
    for (const char* value : {"0", "1"}) {
        setProperty(kVerboseLogProperty, value);
        openFile(twoStreamFile().build());
        countTracks();
    }
    EXPECT_EQ(0u, mLog.count("Dump Track["));
    EXPECT_EQ(0u, mLog.count("    mScale "));
    EXPECT_EQ(0u, mLog.count("mIsIncludeExpensiveMeta"));
}

// Lines of a dump, recorded by a logger that makes another extractor in the midst of it.
Lines gDumped;

void openOtherAtTheRate(const __android_logger_data*, const char* message) {
    const std::string text = message;
    if (text.compare(0, 4, "    ") != 0 && text.compare(0, 10, "Dump Track") != 0) return;
    gDumped.push_back(text);
    if (text.find("mRate ") == std::string::npos) return;
    android::service::MemorySource other(videoFile().build());
    android::service::Extractor::open(pluginUnderTest(), other);
}

// The switches are the process's: any extractor that is made sets them for all.
TEST_F(TrackDump, EndsWhereTheExtractLogIsTurnedOff) {
    setProperty(kExtractLogProperty, "1");
    openFile(twoStreamFile().build());
    setProperty(kExtractLogProperty, "0");
    gDumped.clear();
    __android_log_set_logger(openOtherAtTheRate);  // until the fixture's capture goes
    countTracks();
    EXPECT_EQ((Lines{"Dump Track[0]:", "    mScale         1", "    mRate          25"}), gDumped);
}

TEST_F(TrackDump, BadTrackIsDumpedAsWell) {
    AviFile avi = videoFile();
    avi.addStream(pcmStream(2, 8000, 16));  // without samples
    openLogged(std::move(avi));
    EXPECT_THAT(log(), Contains(warning("finishParse(audio/raw): BAD TRACK!!! Skip it.")));
    EXPECT_EQ("auds(73647561)", valueOf("mFccType", 1));
    EXPECT_EQ("0", valueOf("mSampleSizes.size", 1));
    EXPECT_NE(std::string::npos, dumpOf(1).back().find("audio/x-unknown"));
}

TEST_F(TrackDump, BadTracksOfAFileWithoutAGoodOneAreDumped) {
    openLogged(videoFile(0));
    EXPECT_EQ(0u, countTracks());
    EXPECT_EQ("0", valueOf("mSampleOffsets.size"));
    EXPECT_NE(std::string::npos, dumpOf(0).back().find("video/x-unknown"));
}

TEST_F(TrackDump, StreamThatWasDroppedIsNot) {
    AviFile avi = videoFile();
    avi.addStream(pcmStream(1, 8000, 12));
    openLogged(std::move(avi));
    EXPECT_EQ(1u, mLog.count("Dump Track["));
}

TEST_F(TrackDump, TellsOfAvcWithLengthPrefixes) {
    Stream stream = videoStream("H264", 320, 240, 25);
    std::get<BitmapInfo>(stream.format).extra = {
        1, 0x42, 0, 0x1E, 0xFD, 0xE1, 0, 4, 0x67, 0x42, 0, 0x1E, 1, 0, 3, 0x68, 0xCE, 0x38};
    AviFile avi;
    avi.addStream(stream);
    avi.addChunk(0, patternBytes(30));
    openLogged(std::move(avi));
    EXPECT_EQ("1", valueOf("mIsAVC"));
    EXPECT_EQ("0", valueOf("mIsHEVC"));
    EXPECT_EQ("0", valueOf("mAVCStyle"));
    EXPECT_EQ("2", valueOf("mAVCSizeLength"));
}

TEST_F(TrackDump, TellsOfHevcThatNeedsConfiguration) {
    AviFile avi;
    avi.addStream(videoStream("HEVC", 320, 240, 25));
    avi.addChunk(0, patternBytes(30));
    openLogged(std::move(avi));
    EXPECT_EQ("1", valueOf("mIsHEVC"));
    EXPECT_EQ("0", valueOf("mIsAVC"));
    EXPECT_EQ("1", valueOf("mNeedCodecData"));
}

TEST_F(TrackDump, TellsOfOpenDmlIndexes) {
    AviFile avi = videoFile();
    avi.stream(0).openDml = OpenDml::kStandard;
    openLogged(std::move(avi));
    EXPECT_EQ("1", valueOf("mINDXValid"));
}

TEST_F(TrackDump, TellsOfABrokenIndex) {
    AviFile avi = videoFile();
    avi.segment().index.copies = 0;
    openLogged(std::move(avi));
    EXPECT_EQ("1", valueOf("mBrokenIndex"));
}

// There are no key flags to trust.
TEST_F(TrackDump, IndexOfOtherTracksIsNotBroken) {
    AviFile avi = videoFile();
    avi.addChunk(avi.addStream(audioStream(6, 1, 8000, 8000, 1, 8)), patternBytes(30));
    avi.addChunk(avi.addStream(videoStream("DXSB", 320, 240, 25)), patternBytes(30));
    avi.segment().index.copies = 0;
    openLogged(std::move(avi));
    EXPECT_EQ("1", valueOf("mBrokenIndex", 0));
    EXPECT_EQ("0", valueOf("mBrokenIndex", 1));
    EXPECT_EQ("0", valueOf("mBrokenIndex", 2));
}

TEST_F(TrackDump, FourCharactersAreShownAsTheyAre) {
    AviFile avi;
    avi.addStream(videoStream("XviD", 320, 240, 25));
    avi.addChunk(0, patternBytes(30));
    openLogged(std::move(avi));
    EXPECT_EQ("XviD(44697658)", valueOf("mCompression"));
}

}  // namespace
}  // namespace avitest
