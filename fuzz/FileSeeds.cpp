// SPDX-License-Identifier: Apache-2.0
//
// Small valid files of every index form and every kind of codec configuration.
#include <initializer_list>
#include <utility>

#include "fuzz/DtsSeeds.h"
#include "fuzz/Seeds.h"
#include "tests/support/AviBuilder.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace avitest {

namespace {

constexpr uint16_t kTagAdpcm = 0x0002;
constexpr uint16_t kTagMp2 = 0x0050;
constexpr uint16_t kTagMp3 = 0x0055;
constexpr uint16_t kTagAac = 0x00FF;
constexpr uint16_t kTagAc3 = 0x2000;
constexpr uint16_t kTagDts = 0x2001;
constexpr uint32_t kFrames = 12;  // a video stream is configured at its tenth

Bytes sampleOf(const Bytes& head, size_t length, uint32_t number) {
    return ByteWriter().bytes(head).bytes(patternBytes(length, number)).take();
}

// Frames with their heads in turn, of which the first is a key frame, and audio between them.
AviFile clip(Stream video, const std::vector<Bytes>& frames, Stream audio, const Bytes& sound) {
    AviFile avi;
    const size_t pictures = avi.addStream(std::move(video));
    const size_t track = avi.addStream(std::move(audio));
    for (uint32_t i = 0; i < kFrames; ++i) {
        const size_t head = i % frames.size();
        avi.addChunk(pictures, sampleOf(frames[head], 40 + i, i), head == 0 ? kKey : kNoFlags);
        avi.addChunk(track, sampleOf(sound, 96 - sound.size(), i));
    }
    return avi;
}

const std::vector<Bytes> kJpeg = {{0xFF, 0xD8, 0xFF, 0xE0}};
const std::vector<Bytes> kMpeg4 = {
    {0, 0, 1, 0xB6, 0x10}, {0, 0, 1, 0xB6, 0x50}, {0, 0, 1, 0xB6, 0x90}};
const Bytes kMp3Header = {0xFF, 0xFB, 0x14, 0xC4};  // 32 kbit/s, 48 kHz, one channel: 96 bytes
const Bytes kMp2Header = {0xFF, 0xFD, 0x14, 0xC4};
const Bytes kPps = {0x68, 0xCE, 0x3C, 0x80};
const Bytes kStartCode = {0, 0, 0, 1};

// A baseline set of 352 x 288.
Bytes plainSps() {
    return android::SpsFields().nal();
}

Bytes joined(std::initializer_list<Bytes> parts) {
    ByteWriter out;
    for (const Bytes& part : parts)
        out.bytes(part);
    return out.take();
}

Stream jpegStream() {
    return videoStream("MJPG", 32, 16, 25);
}

AviFile plain() {
    AviFile avi = clip(jpegStream(), kJpeg, pcmStream(2, 8000, 16), {});
    avi.stream(0).name = "de-pictures";
    avi.stream(0).properties = VideoProperties();
    avi.segment().beforeMovi = {infoList({{"INAM", "A title"}, {"IART", "Somebody"}}),
                                Chunk("JUNK", patternBytes(10))};
    return avi;
}

AviFile openDml(OpenDml form, size_t segments) {
    AviFile avi;
    Stream video = videoStream("XVID", 32, 16, 25);
    Stream audio = frameAudioStream(kTagMp3, 1, 48000, 1152, 4000);
    video.openDml = audio.openDml = form;
    avi.addStream(video);
    avi.addStream(audio);
    for (size_t segment = 0; segment < segments; ++segment) {
        if (segment > 0) avi.addSegment();
        for (uint32_t i = 0; i < kFrames; ++i) {
            avi.addChunk(0, sampleOf(kMpeg4[i % 3], 40 + i, i), i % 3 == 0 ? kKey : kNoFlags);
            avi.addChunk(1, sampleOf(kMp3Header, 92, i));
        }
    }
    avi.segment().index.copies = form == OpenDml::kSuper ? 0 : 1;
    return avi;
}

// Groups of chunks, JUNK between them, and no index of any kind.
AviFile withoutIndex() {
    AviFile avi;
    avi.addStream(videoStream("DIVX", 32, 16, 25));
    avi.addStream(pcmStream(1, 8000, 8));
    for (uint32_t i = 0; i < kFrames; ++i) {
        avi.beginGroup();
        avi.addChunk(0, sampleOf(kMpeg4[i % 3], 40, i));
        avi.addChunk(1, patternBytes(80, i));
        avi.endGroup();
        avi.addLooseChunk(Chunk("JUNK", patternBytes(6)));
    }
    avi.segment().index.copies = 0;
    return avi;
}

AviFile absoluteOffsets() {
    AviFile avi = clip(videoStream("DIV3", 32, 16, 25), {{0x10, 0x20}, {0x50, 0x20}},
                       audioStream(kTagAdpcm, 1, 8000, 4096, 24, 4), {});
    avi.segment().index.offsets = IndexOffsets::kAbsolute;
    return avi;
}

AviFile avcStartCodes() {
    const Bytes key =
        joined({kStartCode, plainSps(), kStartCode, kPps, kStartCode, Bytes{0x65, 0x88}});
    Stream audio = frameAudioStream(kTagAac, 2, 44100, 1024);
    std::get<WaveFormat>(audio.format).extra = {0x12, 0x10};
    return clip(videoStream("H264", 352, 288, 25), {key, {0, 0, 0, 1, 0x41, 0x9A}}, audio, {0x21});
}

// The configuration record of these sets, for length prefixes of so many bytes.
Bytes avcRecord(uint8_t prefixSize) {
    const Bytes sps = plainSps();
    ByteWriter out;
    out.u8(1).u8(66).u8(0).u8(30).u8(static_cast<uint8_t>(0xFB + prefixSize));
    out.u8(0xE1).u8(0).u8(static_cast<uint8_t>(sps.size())).bytes(sps);
    out.u8(1).u8(0).u8(static_cast<uint8_t>(kPps.size())).bytes(kPps);
    return out.take();
}

AviFile avcPrefixes() {
    Stream video = videoStream("avc1", 32, 16, 25);
    std::get<BitmapInfo>(video.format).extra = avcRecord(4);
    return clip(video, {{0, 0, 0, 4, 0x65, 0x88, 1, 2}, {0, 0, 0, 3, 0x41, 0x9A, 1}},
                frameAudioStream(kTagAc3, 2, 48000, 1536), {0x0B, 0x77, 0, 0, 0x14, 0x40, 0x43});
}

// Start codes are longer than the prefixes whose place they take.
AviFile avcShortPrefixes() {
    Stream video = videoStream("avc1", 32, 16, 25);
    std::get<BitmapInfo>(video.format).extra = avcRecord(2);
    Stream audio = pcmStream(2, 8000, 16);
    auto& format = std::get<WaveFormat>(audio.format);
    format.formatTag = 0xFFFE;
    format.extra = ExtensibleFormat().toBytes();
    return clip(video, {{0, 4, 0x65, 0x88, 1, 2, 0, 36}, {0, 38, 0x41, 0x9A, 1}}, audio, {});
}

AviFile hevcAndDts() {
    const Bytes key = ByteWriter()
                          .bytes(Bytes{0, 0, 0, 1, 0x40, 0x01, 0x0C, 0x01, 0xFF, 0xFF})
                          .bytes(Bytes{0, 0, 0, 1, 0x42, 0x01, 0x01, 0x01, 0x60, 0, 0, 3, 0, 0x90})
                          .bytes(Bytes{0, 0, 0, 1, 0x44, 0x01, 0xC1, 0x72, 0xB4, 0x62, 0x40})
                          .bytes(Bytes{0, 0, 0, 1, 0x26, 0x01, 0xAF})
                          .take();
    return clip(videoStream("HEVC", 32, 16, 25), {key, {0, 0, 0, 1, 0x02, 0x01, 0xD0}},
                frameAudioStream(kTagDts, 2, 48000, 512),
                {0x7F, 0xFE, 0x80, 0x01, 0xFC, 0x3C, 0x05, 0xF0, 0xB4, 0x00});
}

AviFile mpeg2AndMp2() {
    const Bytes key = {0,    0,    1, 0xB3, 0x02, 0x00, 0x10, 0x13, 0xFF, 0xFF,
                       0xE0, 0x18, 0, 0,    1,    0xB5, 0x14, 0x8A, 0,    1,
                       0,    0,    0, 0,    1,    0,    0,    0x0F, 0xFF, 0xF8};
    return clip(videoStream("MPG2", 32, 16, 25), {key, {0, 0, 1, 0, 0, 0x57, 0xFF, 0xF9}},
                frameAudioStream(kTagMp2, 1, 48000, 1152, 4000), kMp2Header);
}

// Frames of MPEG audio that do not end with their chunks.
AviFile mp3ByBytes() {
    AviFile avi;
    avi.addStream(jpegStream());
    avi.addStream(audioStream(kTagMp3, 1, 48000, 4000, 1));
    ByteWriter sound;
    for (uint32_t i = 0; i < 2 * kFrames; ++i)
        sound.bytes(sampleOf(kMp3Header, 92, i));
    const size_t chunkSize = sound.size() / kFrames - 5;
    for (uint32_t i = 0; i < kFrames; ++i) {
        const auto begin = sound.data().begin() + static_cast<ptrdiff_t>(i * chunkSize);
        avi.addChunk(0, sampleOf(kJpeg[0], 30, i));
        avi.addChunk(1, Bytes(begin, begin + static_cast<ptrdiff_t>(chunkSize)));
    }
    return avi;
}

// Blocks of one frame's samples, junk in front of the first header.
AviFile mp2InBlocks() {
    constexpr uint16_t kBlock = 384;
    AviFile avi;
    avi.addStream(jpegStream());
    Stream audio = frameAudioStream(kTagMp2, 1, 32000, kBlock, 4000);
    std::get<WaveFormat>(audio.format).blockAlign = kBlock;
    avi.addStream(audio);
    const Bytes frame = joined({Bytes{0xFF, 0xFF, 0x18, 0x00}, Bytes(44, 0x2A)});
    avi.addChunk(1, Bytes(kBlock, 0x15));
    for (uint32_t i = 0; i < kFrames; ++i) {
        avi.addChunk(0, sampleOf(kJpeg[0], 10, i));
        const Bytes fill(kBlock - 2 * frame.size(), 0x15);
        if (i % 4 == 0) avi.addChunk(1, joined({frame, frame, fill}));
    }
    return avi;
}

// Video that needs no configuration, and one stream whose frames nobody knows.
AviFile manyVideoCodecs() {
    AviFile avi;
    for (const ChunkId code : {ChunkId("WMV3"), ChunkId("H263"), ChunkId("FLV1"), ChunkId("VP6F"),
                               ChunkId("VP80"), ChunkId("ABCD")}) {
        avi.addStream(videoStream(code, 32, 16, 25));
    }
    for (uint32_t i = 0; i < 6 * kFrames; ++i) {
        const uint32_t flags = i / 6 % 4 == 0 ? kKey : kNoFlags;
        avi.addChunk(i % 6, patternBytes(6 + i % 5, i), flags);
    }
    return avi;
}

AviFile wmv3AndDtsSubstream() {
    return clip(videoStream("WMV3", 32, 16, 25), {{0x24, 0x80}, {0x64, 0x80}},
                frameAudioStream(kTagDts, 2, 48000, 512), dtsSubstream(kDtsLossless));
}

AviFile manyTags() {
    AviFile avi = clip(jpegStream(), kJpeg, audioStream(0x0007, 1, 8000, 8000, 1, 8), {});
    avi.segment().beforeMovi = {infoList({{"INAM", "A title"},
                                          {"IPRD", "An album"},
                                          {"IART", "Somebody"},
                                          {"IGNR", "A genre"},
                                          {"ICRD", "2024"},
                                          {"ICMT", "A comment"},
                                          {"ISFT", "A writer"}})};
    avi.segment().afterIndex = {infoList({{"INAM", "Another title"}})};
    return avi;
}

AviFile vc1AndPcm24() {
    return clip(videoStream("WVC1", 32, 16, 25), {{0, 0, 1, 0x0F, 0xC5}, {0, 0, 1, 0x0D, 0x85}},
                pcmStream(1, 8000, 24), {});
}

AviFile subtitlesAndAdts() {
    AviFile avi =
        clip(videoStream("XVID", 32, 16, 25), kMpeg4, frameAudioStream(kTagAac, 2, 44100, 1024),
             {0xFF, 0xF1, 0x50, 0x80, 0x0C, 0x1F, 0xFC});
    const size_t subtitles = avi.addStream(videoStream("DXSB", 32, 16, 25));
    avi.addChunk(subtitles, sampleOf(bytesOf("[00:00:00.100-00:00:00.200]"), 30, 1));
    return avi;
}

// --- What mended bugs left.

// One chunk at the end of the range of offsets.
AviFile offsetBeyondAllFiles() {
    AviFile avi;
    avi.addStream(jpegStream());
    avi.segment().index.copies = 0;
    avi.addChunk(0, sampleOf(kJpeg[0], 40, 0));
    avi.stream(0).edit = [](Chunk& strl) {
        StandardIndex index;
        index.header.baseOffset = 0x7FFFFFFFFFFFFFFF;
        index.entries = {{0, 44}};
        strl.add(Chunk("indx", index.toBytes()));
    };
    return avi;
}

// Frames whose length prefixes look like the start codes of B-frames.
AviFile rowOfSeemingBFrames() {
    AviFile avi = avcPrefixes();
    const Bytes frame = ByteWriter().bytes(Bytes{0, 0, 1, 0x41, 0xA0}).fill(320, 0xFF).take();
    for (uint32_t i = 0; i < 2 * kFrames; ++i)
        avi.addChunk(0, frame, i % 4 == 0 ? kKey : kNoFlags);
    return avi;
}

// Junk of a block, by which the stream counts in blocks, frames, and blocks without a header.
AviFile blocksWithoutHeader() {
    constexpr size_t kBlock = 1152;
    AviFile avi;
    Stream audio = frameAudioStream(kTagMp3, 1, 48000, 1152, 4000);
    std::get<WaveFormat>(audio.format).blockAlign = kBlock;
    avi.addStream(audio);
    avi.addChunk(0, Bytes(kBlock, 0x11));
    for (uint32_t i = 0; i < kFrames; ++i)
        avi.addChunk(0, sampleOf(kMp3Header, 92, i));
    avi.addChunk(0, Bytes(4 * kBlock + 100, 0x22));
    avi.addChunk(0, sampleOf(kMp3Header, 92, 0));
    return avi;
}

AviFile subtitleBeforeZero() {
    AviFile avi = clip(jpegStream(), kJpeg, pcmStream(1, 8000, 16), {});
    const size_t subtitles = avi.addStream(videoStream("DXSB", 32, 16, 25));
    avi.addChunk(subtitles, sampleOf(bytesOf("[ -: -: -. --00:00:00.200]"), 30, 1));
    return avi;
}

}  // namespace

std::vector<Seed> fileSeeds() {
    std::vector<Seed> seeds;
    const auto add = [&seeds](const char* name, AviFile file) {
        seeds.push_back({std::string(name) + ".avi", file.build()});
    };
    add("idx1_mjpeg_pcm16", plain());
    add("idx1_absolute_div3_adpcm", absoluteOffsets());
    add("opendml_standard_mpeg4_mp3", openDml(OpenDml::kStandard, 1));
    add("opendml_super_two_segments", openDml(OpenDml::kSuper, 2));
    add("no_index_rec_lists_pcm8", withoutIndex());
    add("avc_start_codes_aac_raw", avcStartCodes());
    add("avc_prefixes_ac3", avcPrefixes());
    add("avc_short_prefixes_extensible", avcShortPrefixes());
    add("hevc_dts", hevcAndDts());
    add("mpeg2_mp2", mpeg2AndMp2());
    add("mjpeg_mp3_by_bytes", mp3ByBytes());
    add("mjpeg_mp2_in_blocks", mp2InBlocks());
    add("vc1_pcm24", vc1AndPcm24());
    add("wmv3_dts_substream", wmv3AndDtsSubstream());
    add("many_video_codecs", manyVideoCodecs());
    add("subtitles_aac_adts", subtitlesAndAdts());
    add("mjpeg_mulaw_tags", manyTags());
    add("bug_offset_beyond_all_files", offsetBeyondAllFiles());
    add("bug_row_of_seeming_b_frames", rowOfSeemingBFrames());
    add("bug_blocks_without_header", blocksWithoutHeader());
    add("bug_subtitle_before_zero", subtitleBeforeZero());
    return seeds;
}

}  // namespace avitest
