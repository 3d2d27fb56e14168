// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/robustness/SmallFiles.h"

#include <ostream>

namespace avitest {

namespace {

constexpr uint16_t kTagMsAdpcm = 0x0002;
constexpr uint16_t kTagAc3 = 0x2000;
constexpr uint32_t kFrames = 4;

// A frame that begins with `head`, of odd and even lengths in turn.
Bytes frame(const Bytes& head, uint32_t number) {
    return ByteWriter().bytes(head).bytes(patternBytes(20 + number, number)).take();
}

SmallFile finish(const std::string& name, AviFile* avi, size_t video, size_t sound) {
    SmallFile file;
    file.name = name;
    file.bytes = avi->build();
    for (const size_t stream : {video, sound}) {
        file.samples.emplace_back();
        for (const MoviChunk& chunk : avi->chunks(stream))
            file.samples.back().push_back(chunk.data());
    }
    return file;
}

// Interleaves frames, whose heads are given, with chunks of sound.
SmallFile interleave(const std::string& name, Stream video, Stream sound,
                     const std::vector<Bytes>& heads) {
    AviFile avi;
    const size_t videoStream = avi.addStream(std::move(video));
    const size_t soundStream = avi.addStream(std::move(sound));
    for (uint32_t i = 0; i < kFrames; ++i) {
        avi.addChunk(videoStream, frame(heads[i % heads.size()], i), i == 0 ? kKey : kNoFlags);
        avi.addChunk(soundStream, patternBytes(24, 100 + i), kKey);
    }
    SmallFile file = finish(name, &avi, videoStream, soundStream);
    file.samples.clear();
    return file;
}

SmallFile bFramesAndPcm8() {
    const Bytes key = {0, 0, 1, 0xB6, 0x10, 0};
    const Bytes predicted = {0, 0, 1, 0xB6, 0x50, 0};
    const Bytes bidirectional = {0, 0, 1, 0xB6, 0x90, 0};
    return interleave("BFramesAndPcm8", videoStream("FMP4", 32, 16, 25), pcmStream(1, 8000, 8),
                      {key, predicted, bidirectional, bidirectional});
}

// The configuration record announces length prefixes of four bytes.
SmallFile avcAndAdpcm() {
    Stream video = videoStream("H264", 32, 16, 25);
    std::get<BitmapInfo>(video.format).extra = {1,  66, 0,  10, 0xFF, 0xE1, 0,    4,   0x67,
                                                66, 0,  10, 1,  0,    2,    0x68, 0xCE};
    return interleave("AvcAndAdpcm", video, audioStream(kTagMsAdpcm, 1, 8000, 4096, 24, 4),
                      {{0, 0, 0, 3, 0x65, 0x88, 1}, {0, 0, 0, 3, 0x41, 0x9A, 1}});
}

SmallFile vc1AndPcm24() {
    return interleave("Vc1AndPcm24", videoStream("WVC1", 32, 16, 25), pcmStream(1, 8000, 24),
                      {{0, 0, 1, 0x0D, 0xC5}, {0x85, 1, 2, 3, 4}});
}

SmallFile subtitlesAndAc3() {
    return interleave("SubtitlesAndAc3", videoStream("DXSB", 32, 16, 25),
                      frameAudioStream(kTagAc3, 2, 48000, 1536),
                      {bytesOf("[00:00:01.000-00:00:02.000]")});
}

SmallFile soundBeforeVideo() {
    AviFile avi;
    const size_t sound = avi.addStream(pcmStream(1, 8000, 16));
    const size_t video = avi.addStream(videoStream("MJPG", 32, 16, 25));
    for (uint32_t i = 0; i < kFrames; ++i) {
        avi.addChunk(sound, patternBytes(24, 100 + i), kKey);
        avi.addChunk(video, frame({0xFF, 0xD8}, i), kKey);
    }
    return finish("SoundBeforeVideo", &avi, video, sound);
}

}  // namespace

void PrintTo(const SmallFile& file, std::ostream* out) {
    *out << file.name;
}

SmallFile plainFile() {
    AviFile avi;
    Stream pictures = videoStream("MJPG", 32, 16, 25);
    pictures.name = "de-pictures";
    pictures.properties = VideoProperties();
    pictures.privateData = patternBytes(6);
    const size_t video = avi.addStream(pictures);
    const size_t sound = avi.addStream(pcmStream(2, 8000, 16));
    avi.segment().beforeMovi = {infoList({{"INAM", "A"}}), Chunk("JUNK", patternBytes(10))};
    for (uint32_t i = 0; i < kFrames; ++i) {
        avi.addChunk(video, frame({0xFF, 0xD8}, i), kKey);
        avi.addChunk(sound, patternBytes(24, 100 + i), kKey);
    }
    return finish("Plain", &avi, video, sound);
}

std::vector<SmallFile> smallFiles() {
    return {plainFile(),   bFramesAndPcm8(),  avcAndAdpcm(),
            vc1AndPcm24(), subtitlesAndAc3(), soundBeforeVideo()};
}

}  // namespace avitest
