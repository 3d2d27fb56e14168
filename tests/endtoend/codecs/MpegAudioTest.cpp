// SPDX-License-Identifier: Apache-2.0
//
// MP3 and MP2: frames as read, whatever the chunks, against the frames that ffmpeg's parser finds.

#include <media/NdkMediaFormat.h>

#include <algorithm>

#include "tests/endtoend/codecs/Workshop.h"

namespace avitest {
namespace {

// A stream of bare frames, without the tags and tables that players have to skip.
struct MpegRecipe {
    const char* name;
    const char* extension;
    unsigned channels;
    unsigned rate;
    Arguments encoder;
    const char* mime;
    uint32_t bytesPerSec;
};

const Arguments kLame = {"-c:a", "libmp3lame", "-write_xing", "0", "-id3v2_version", "0"};

std::vector<MpegRecipe> mpegRecipes() {
    return {
        {"Cbr128", "mp3", 2, 44100, kLame + Arguments{"-b:a", "128k"}, "audio/mpeg", 16000},
        {"Cbr320", "mp3", 2, 48000, kLame + Arguments{"-b:a", "320k"}, "audio/mpeg", 40000},
        {"Cbr64Mono", "mp3", 1, 32000, kLame + Arguments{"-b:a", "64k"}, "audio/mpeg", 8000},
        {"Vbr", "mp3", 2, 44100, kLame + Arguments{"-q:a", "2"}, "audio/mpeg", 16000},
        {"Mpeg25", "mp3", 1, 11025, kLame + Arguments{"-b:a", "32k"}, "audio/mpeg", 4000},
        {"LayerTwo", "mp2", 2, 44100, {"-c:a", "mp2", "-b:a", "192k"}, "audio/mpeg-L2", 24000},
        {"LayerTwoMono", "mp2", 1, 48000, {"-c:a", "mp2", "-b:a", "96k"}, "audio/mpeg-L2", 12000},
        {"LayerTwoLow", "mp2", 1, 22050, {"-c:a", "mp2", "-b:a", "64k"}, "audio/mpeg-L2", 8000},
    };
}

Arguments encoding(const MpegRecipe& recipe) {
    return sound(recipe.channels, recipe.rate) + recipe.encoder;
}

std::string streamOf(const MpegRecipe& recipe) {
    return madeFile(std::string(recipe.name) + "." + recipe.extension, encoding(recipe));
}

// One frame a chunk, as ffmpeg packs them.
std::string framesInAvi(const MpegRecipe& recipe) {
    return remuxed(streamOf(recipe), std::string(recipe.name) + ".avi");
}

// The stream counted in bytes, in chunks of `size` bytes.
Bytes packed(const MpegRecipe& recipe, size_t size) {
    constexpr uint16_t kLayerThreeTag = 0x55;
    constexpr uint16_t kLayersOneAndTwoTag = 0x50;
    const uint16_t tag =
        std::string(recipe.extension) == "mp3" ? kLayerThreeTag : kLayersOneAndTwoTag;
    AviFile avi;
    const size_t track = avi.addStream(audioStream(tag, static_cast<uint16_t>(recipe.channels),
                                                   recipe.rate, recipe.bytesPerSec, 1));
    const Bytes stream = contentOf(streamOf(recipe));
    for (size_t begin = 0; begin < stream.size(); begin += size) {
        const auto first = stream.begin() + static_cast<Bytes::difference_type>(begin);
        const auto length =
            static_cast<Bytes::difference_type>(std::min(size, stream.size() - begin));
        avi.addChunk(track, Bytes(first, first + length));
    }
    return avi.build();
}

class MpegAudio : public CodecsTest {};

TEST_F(MpegAudio, FormatIsFfmpegs) {
    for (const MpegRecipe& recipe : mpegRecipes()) {
        SCOPED_TRACE(recipe.name);
        openPath(framesInAvi(recipe));
        expectSound(recipe.mime, knownStream(streamOf(recipe)));
    }
}

TEST_F(MpegAudio, FramesOfFfmpegsChunksAreFfmpegs) {
    for (const MpegRecipe& recipe : mpegRecipes()) {
        SCOPED_TRACE(recipe.name);
        const std::string path = framesInAvi(recipe);
        openPath(path);
        EXPECT_EQ(framesOf(readAll(0)), knownFrames(path));
    }
}

TEST_F(MpegAudio, FramesOfAnyChunksAreFfmpegs) {
    for (const MpegRecipe& recipe : mpegRecipes()) {
        const std::vector<KnownFrame> expected = knownFrames(streamOf(recipe));
        ASSERT_GT(expected.size(), 10u);
        for (const size_t size : {2200u, 2304u, 3001u, 4096u, 1000000u}) {
            SCOPED_TRACE(std::string(recipe.name) + " " + std::to_string(size));
            openFile(packed(recipe, size));
            EXPECT_EQ(framesOf(readAll(0)), expected);
        }
    }
}

TEST_F(MpegAudio, TimesOfAConstantBitRateFollowTheFrames) {
    const MpegRecipe recipe = mpegRecipes()[0];
    openFile(packed(recipe, 4096));
    const std::vector<Sample> samples = readAll(0);
    ASSERT_GT(samples.size(), 10u);
    constexpr int64_t kFrameUs = 26122;  // 1152 samples
    for (size_t i = 1; i < samples.size(); ++i) {
        SCOPED_TRACE(i);
        // A frame across chunks has the time of its beginning, any other that of its end.
        EXPECT_GE(samples[i].timeUs, samples[i - 1].timeUs);
        const int64_t end = static_cast<int64_t>(i + 1) * kFrameUs;
        EXPECT_NEAR(static_cast<double>(samples[i].timeUs), static_cast<double>(end),
                    2.0 * kFrameUs);
    }
}

TEST_F(MpegAudio, TableOfAVariableBitRateIsAFrameAsWell) {
    const std::string path = madeFile(
        "VbrWithTable.avi", sound(2, 44100) + Arguments{"-c:a", "libmp3lame", "-q:a", "2"});
    openPath(path);
    EXPECT_EQ(framesOf(readAll(0)), knownFrames(path));
}

}  // namespace
}  // namespace avitest
