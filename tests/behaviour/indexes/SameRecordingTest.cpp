// SPDX-License-Identifier: Apache-2.0
//
// One recording with each form of index gives the same samples, sizes and times, and the same key
// flags where the form has them.

#include "tests/behaviour/indexes/IndexesFixture.h"
#include "tests/endtoend/media/MediaFile.h"

namespace avitest {
namespace {

enum class Form { kIdx1, kAbsoluteIdx1, kStandard, kSuper, kScan };

class SameRecording : public IndexesFixture {
  protected:
    // The samples of all tracks when the recording is stored in this form.
    std::vector<std::vector<Sample>> samplesIn(AviFile avi, Form form) {
        const bool hasIdx1 = form == Form::kIdx1 || form == Form::kAbsoluteIdx1;
        avi.segment().index.copies = hasIdx1 ? 1 : 0;
        if (form == Form::kAbsoluteIdx1) {
            avi.segment().index.offsets = IndexOffsets::kAbsolute;
        }
        mLog.clear();
        const size_t streams = mStreams;
        for (size_t i = 0; i < streams; ++i) {
            avi.stream(i).openDml = form == Form::kStandard ? OpenDml::kStandard
                                    : form == Form::kSuper  ? OpenDml::kSuper
                                                            : OpenDml::kNone;
        }
        openFile(avi.build());
        EXPECT_EQ(streams, countTracks());
        EXPECT_EQ(form == Form::kScan, scanned());
        std::vector<std::vector<Sample>> result;
        for (size_t i = 0; i < countTracks(); ++i)
            result.push_back(readAll(i));
        return result;
    }

    void expectSameInAllForms(const AviFile& avi, size_t streams) {
        mStreams = streams;
        const auto expected = samplesIn(avi, Form::kIdx1);
        for (const Form form : {Form::kAbsoluteIdx1, Form::kStandard, Form::kSuper})
            EXPECT_EQ(expected, samplesIn(avi, form)) << static_cast<int>(form);
        expectSameButFlags(expected, samplesIn(avi, Form::kScan));
    }

    static void expectSameButFlags(std::vector<std::vector<Sample>> expected,
                                   const std::vector<std::vector<Sample>>& found) {
        for (std::vector<Sample>& samples : expected) {
            for (Sample& sample : samples)
                sample.sync = true;
        }
        EXPECT_EQ(expected, found);
    }

  private:
    size_t mStreams = 0;
};

TEST_F(SameRecording, OfVideoAndAudio) {
    expectSameInAllForms(twoStreamFile(), 2);
}

TEST_F(SameRecording, OfGroupedChunksAndJunk) {
    AviFile avi = twoStreamFile();
    for (uint32_t i = 0; i < 20; ++i) {
        avi.beginGroup();
        avi.addChunk(0, patternBytes(31 + i, i), i % 4 == 0 ? kKey : kNoFlags);
        avi.addLooseChunk(Chunk("JUNK", Bytes(5)));
        avi.addChunk(1, patternBytes(16 + 4 * (i % 3), 100 + i));
        avi.endGroup();
        avi.addLooseChunk(Chunk("JUNK", Bytes(9)));
    }
    expectSameInAllForms(avi, 2);
}

TEST_F(SameRecording, OfDroppedFrames) {
    AviFile avi = twoStreamFile();
    for (uint32_t i = 0; i < 8; ++i)
        avi.addChunk(0, i % 3 == 0 ? Bytes() : patternBytes(30 + i, i), kNoFlags);
    avi.addChunk(1, {});
    avi.addChunk(1, patternBytes(20, 70));
    expectSameInAllForms(avi, 2);
}

TEST_F(SameRecording, OfSoundBeforePictures) {
    AviFile avi;
    avi.addStream(pcmStream(2, 8000, 24));
    avi.addStream(frameAudioStream(0x2000, 2, 48000, 1536));
    avi.addStream(mjpegStream());
    for (uint32_t i = 0; i < 30; ++i) {
        avi.addChunk(0, patternBytes(60 + 6 * (i % 5), i));
        avi.addChunk(2, patternBytes(90 + i, 50 + i), i % 5 == 0 ? kKey : kNoFlags);
    }
    for (uint32_t i = 0; i < 4; ++i) {
        Bytes frame = patternBytes(64, 200 + i);
        frame[0] = 0x0B;  // the sync word of the audio frames
        frame[1] = 0x77;
        avi.addChunk(1, frame);
    }
    expectSameInAllForms(avi, 3);
}

// What ffmpeg wrote, as a recording to store anew.
AviFile rewritten(const MediaFile& media) {
    AviFile avi;
    for (const StreamFields& fields : media.layout.streams) {
        Stream stream;
        stream.header.type = ChunkId::of(fields.type);
        stream.header.scale = fields.scale;
        stream.header.rate = fields.rate;
        stream.header.length = fields.length;
        stream.header.sampleSize = fields.sampleSize;
        stream.format = fields.format;
        stream.chunkType = fields.isVideo() ? "dc" : "wb";
        avi.addStream(std::move(stream));
    }
    for (const IndexedChunk& chunk : media.layout.chunks) {
        const auto begin = media.bytes.begin() + static_cast<ptrdiff_t>(chunk.offset);
        avi.addChunk(chunk.stream, Bytes(begin, begin + static_cast<ptrdiff_t>(chunk.size)),
                     chunk.key ? kKey : kNoFlags);
    }
    return avi;
}

class SameMediaFile : public SameRecording, public ::testing::WithParamInterface<Recipe> {};

TEST_P(SameMediaFile, StoredAnewInAllForms) {
    const MediaFile& media = mediaFile(GetParam());
    expectSameInAllForms(rewritten(media), media.layout.streams.size());
}

TEST_P(SameMediaFile, StoredAnewIsWhatFfmpegWrote) {
    const MediaFile& media = mediaFile(GetParam());
    openFile(media.bytes);
    std::vector<std::vector<Sample>> expected;
    for (size_t i = 0; i < countTracks(); ++i)
        expected.push_back(readAll(i));
    openFile(rewritten(media).build());
    ASSERT_EQ(expected.size(), countTracks());
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(expected[i], readAll(i)) << i;
}

std::vector<Recipe> recipes() {
    std::vector<Recipe> all = {mp3Recipe()};
    for (const std::vector<Recipe>& more : {videoRecipes(), audioRecipes(), mixedRecipes()})
        all.insert(all.end(), more.begin(), more.end());
    return all;
}

INSTANTIATE_TEST_SUITE_P(Media, SameMediaFile, ::testing::ValuesIn(recipes()),
                         [](const auto& param) { return param.param.name; });

}  // namespace
}  // namespace avitest
