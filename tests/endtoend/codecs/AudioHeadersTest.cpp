// SPDX-License-Identifier: Apache-2.0
//
// AC-3, DTS, ADPCM and PCM: type, channels, rate and configuration against ffmpeg's and against the
// file's own headers.

#include <media/NdkMediaFormat.h>

#include "tests/endtoend/codecs/Workshop.h"

namespace avitest {
namespace {

struct Row {
    const char* codec;
    unsigned channels;
    unsigned rate;
    const char* mime;
};

Arguments encoder(const Row& row) {
    // ffmpeg calls its DTS encoder experimental.
    return sound(row.channels, row.rate) + Arguments{"-c:a", row.codec, "-strict", "-2"};
}

std::string nameOf(const Row& row) {
    return std::string(row.codec) + "_" + std::to_string(row.channels) + "_" +
           std::to_string(row.rate);
}

std::string fileOf(const Row& row) {
    return madeFile(nameOf(row) + ".avi", encoder(row));
}

class AudioHeaders : public CodecsTest {
  protected:
    // A file that says it has PCM of 16 bits and 48000 Hz in stereo, but has these frames.
    void openAsPcm(const std::string& streamPath) {
        openFile(aviOf(pcmStream(2, 48000, 16), streamPath));
    }
};

TEST_F(AudioHeaders, TypeChannelsAndRateAreFfmpegs) {
    const Row rows[] = {
        {"ac3", 1, 48000, "audio/ac3"},
        {"ac3", 2, 44100, "audio/ac3"},
        {"ac3", 6, 48000, "audio/ac3"},
        {"dca", 2, 44100, "audio/vnd.dts"},
        {"dca", 2, 48000, "audio/vnd.dts"},
        {"dca", 6, 48000, "audio/vnd.dts"},
        {"adpcm_ms", 1, 22050, "audio/x-adpcm-ms"},
        {"adpcm_ms", 2, 44100, "audio/x-adpcm-ms"},
        {"adpcm_ima_wav", 1, 22050, "audio/x-adpcm-dvi-ima"},
        {"adpcm_ima_wav", 2, 44100, "audio/x-adpcm-dvi-ima"},
        {"pcm_u8", 1, 8000, "audio/raw"},
        {"pcm_s16le", 2, 44100, "audio/raw"},
        {"pcm_s16le", 6, 48000, "audio/raw"},
        {"pcm_s24le", 2, 48000, "audio/raw"},
        {"pcm_s32le", 1, 22050, "audio/raw"},
        {"pcm_alaw", 1, 8000, "audio/g711-alaw"},
        {"pcm_mulaw", 2, 8000, "audio/g711-mlaw"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(nameOf(row));
        const std::string path = fileOf(row);
        openPath(path);
        expectSound(row.mime, knownStream(path));
    }
}

TEST_F(AudioHeaders, ConfigurationOfAdpcmIsTheBlockOfTheFormat) {
    const Row rows[] = {{"adpcm_ms", 1, 22050, ""},
                        {"adpcm_ms", 2, 44100, ""},
                        {"adpcm_ima_wav", 1, 22050, ""},
                        {"adpcm_ima_wav", 2, 44100, ""}};
    for (const Row& row : rows) {
        SCOPED_TRACE(nameOf(row));
        const std::string path = fileOf(row);
        openPath(path);
        const uint16_t block = parseLayout(contentOf(path)).streams.at(0).blockAlign();
        EXPECT_GT(block, 0);
        EXPECT_EQ(buffer(AMEDIAFORMAT_KEY_CSD_0), ByteWriter().u32(block).take());
    }
}

TEST_F(AudioHeaders, ConfigurationIsLeftOutWhereThereIsNone) {
    for (const Row& row : {Row{"ac3", 2, 44100, ""}, Row{"dca", 2, 48000, ""},
                           Row{"pcm_s16le", 2, 44100, ""}, Row{"pcm_alaw", 1, 8000, ""}}) {
        SCOPED_TRACE(nameOf(row));
        openPath(fileOf(row));
        EXPECT_TRUE(buffer(AMEDIAFORMAT_KEY_CSD_0).empty());
        EXPECT_TRUE(buffer(AMEDIAFORMAT_KEY_ESDS).empty());
    }
}

TEST_F(AudioHeaders, DtsInAPcmTrackIsDts) {
    for (const Row& row : {Row{"dca", 2, 44100, ""}, Row{"dca", 6, 48000, ""}}) {
        SCOPED_TRACE(nameOf(row));
        const std::string path = madeFile(nameOf(row) + ".dts", encoder(row));
        openAsPcm(path);
        expectSound("audio/vnd.dts", knownStream(path));
        EXPECT_EQ(framesOf(readAll(0)), knownFrames(path));
    }
}

// Its header is not looked into: channels and rate stay those of the format.
TEST_F(AudioHeaders, Ac3InAPcmTrackIsAc3) {
    const Row row = {"ac3", 2, 48000, ""};
    const std::string path = madeFile(nameOf(row) + ".ac3", encoder(row));
    openAsPcm(path);
    expectSound("audio/ac3", knownStream(path));
    EXPECT_EQ(framesOf(readAll(0)), knownFrames(path));
}

}  // namespace
}  // namespace avitest
