// SPDX-License-Identifier: Apache-2.0
//
// That the media files hold what their names promise; otherwise reading them proves little.

#include <algorithm>
#include <set>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/endtoend/media/Expectations.h"
#include "tests/endtoend/media/Probe.h"

namespace avitest {
namespace {

const MediaFile& made(const std::vector<Recipe>& recipes, const std::string& name) {
    for (const Recipe& recipe : recipes) {
        if (recipe.name == name) return mediaFile(recipe);
    }
    throw std::logic_error("no recipe " + name);
}

std::set<char> kindsOfPictures(const std::string& recipe) {
    std::set<char> kinds;
    for (const auto& picture : probePictures(made(videoRecipes(), recipe).path))
        kinds.insert(picture.second);
    return kinds;
}

TEST(Recipes, FilesWithBFramesHaveAllKindsOfPictures) {
    const std::set<char> all = {'I', 'P', 'B'};
    EXPECT_EQ(all, kindsOfPictures("H264WithBFrames"));
    EXPECT_EQ(all, kindsOfPictures("Mpeg4WithBFrames"));
}

TEST(Recipes, FilesWithoutBFramesHaveNone) {
    EXPECT_EQ((std::set<char>{'I', 'P'}), kindsOfPictures("H264"));
    EXPECT_EQ((std::set<char>{'I', 'P'}), kindsOfPictures("Mpeg4"));
}

TEST(Recipes, H264IsStoredWithStartCodes) {
    const MediaFile& media = made(videoRecipes(), "H264");
    const Bytes first = expectedSamples(media, 0).at(0).bytes;
    ASSERT_LE(4u, first.size());
    EXPECT_EQ(Bytes({0, 0, 0, 1}), Bytes(first.begin(), first.begin() + 4));
    EXPECT_EQ(40u, media.layout.streams[0].format.size()) << "no codec data in the header";
}

TEST(Recipes, DroppedFramesAreEmptyChunks) {
    const auto chunks = made(videoRecipes(), "MjpegWithDroppedFrames").layout.chunksOf(0);
    EXPECT_EQ(3, std::count_if(chunks.begin(), chunks.end(),
                               [](const IndexedChunk& chunk) { return chunk.size == 0; }));
}

TEST(Recipes, SomeChunksHaveAPadByte) {
    const auto chunks = made(videoRecipes(), "MjpegOfOddSize").layout.chunksOf(0);
    EXPECT_TRUE(std::any_of(chunks.begin(), chunks.end(),
                            [](const IndexedChunk& chunk) { return chunk.size % 2 != 0; }));
}

TEST(Recipes, PcmHasTheWidthOfItsName) {
    for (const unsigned bits : {8u, 16u, 24u, 32u}) {
        const std::string name = "Pcm" + std::to_string(bits) + "Stereo";
        const StreamFields& stream = made(audioRecipes(), name).layout.streams.at(0);
        EXPECT_EQ(bits, stream.bitsPerSample());
        EXPECT_EQ(bits > 16 ? 0xFFFE : 0x0001, stream.formatTag());
    }
}

TEST(Recipes, SoundCanComeBeforePictures) {
    const MediaFile& media = made(mixedRecipes(), "SoundBeforePictures");
    EXPECT_EQ("auds", media.layout.streams.at(0).type);
    EXPECT_EQ((std::vector<size_t>{1, 0}), media.layout.trackOrder());
}

TEST(Recipes, PcmIsNarrowedToItsUpperBytes) {
    EXPECT_EQ(Bytes({0x00, 0x80, 0x00, 0x00, 0x00, 0x7F}), toPcm16({0x00, 0x80, 0xFF}, 8));
    EXPECT_EQ(Bytes({1, 2, 3, 4}), toPcm16({1, 2, 3, 4}, 16));
    EXPECT_EQ(Bytes({2, 3, 5, 6}), toPcm16({1, 2, 3, 4, 5, 6}, 24));
    EXPECT_EQ(Bytes({3, 4}), toPcm16({1, 2, 3, 4}, 32));
}

}  // namespace
}  // namespace avitest
