// SPDX-License-Identifier: Apache-2.0
//
// Codec configuration from samples.

#include "tests/behaviour/codecs/DtsBytes.h"
#include "tests/behaviour/codecs/MpegAudioBytes.h"
#include "tests/behaviour/logs/Files.h"
#include "tests/behaviour/logs/Scenarios.h"

namespace avitest {

namespace {

const Bytes kPps = {0x68, 0xCE, 0x3C, 0x80};
const Bytes kIdr = {0x65, 0x88, 0x84, 0x21, 0xA0, 0xFF, 0x13, 0x57};
const Bytes kSlice = {0, 0, 0, 1, 0x41, 0x9A, 2, 5};
constexpr size_t kBlockSize = 1152;

AviFile avcClip(const Bytes& first) {
    return clipOf(videoStream("H264", 320, 240, 25), first, kSlice);
}

// 352 x 288, level 3.0.
Bytes sps(bool withRatio) {
    android::SpsFields fields;
    if (withRatio) {
        fields.vui = [](android::SpsBits& bits) {
            bits.u(1, 1).u(8, 255).u(16, 16).u(16, 11);  // aspect ratio, in full
            bits.u(1, 0).u(1, 0).u(1, 0).u(1, 0).u(1, 0).u(1, 0).u(1, 0).u(1, 0);
        };
    }
    return fields.nal();
}

Bytes hevcUnit(uint8_t header, size_t size) {
    return Bytes{0, 0, 0, 1, header, 1} + Bytes(size - 2, 0x99);
}

Play dts(const std::vector<Bytes>& chunks) {
    return {codecFile(audioOfTag(0x2001), chunks).build()};
}

}  // namespace

Play avcStartCodes() {
    return {avcClip(unit4(sps(false)) + unit4(kPps) + unit4(kIdr)).build()};
}

Play avcWithAspectRatio() {
    return {avcClip(unit4(sps(true)) + unit4(kPps) + unit4(kIdr)).build()};
}

Play avcWithoutIdr() {
    return {avcClip(kSlice + Bytes{0x22}).build()};
}

Play avcWithoutSps() {
    return {avcClip(unit4(kPps) + unit4(kIdr)).build()};
}

Play avcWithoutPps() {
    return {avcClip(unit4(sps(false)) + unit4(kIdr)).build()};
}

Play avcUnreadable() {
    AviFile avi =
        codecFile(videoStream("H264", 320, 240, 25), std::vector<Bytes>(kClipSamples, kSlice));
    const Bytes file = avi.build();
    return {file, {unreadable(avi.chunks(0)[0].place)}};
}

Play hevc() {
    const Bytes first = hevcUnit(0x40, 24) + hevcUnit(0x42, 40) + hevcUnit(0x44, 7);
    return {
        clipOf(videoStream("HEVC", 320, 240, 25), first + hevcUnit(0x26, 20), hevcUnit(0x02, 20))
            .build()};
}

Play hevcWithoutSets() {
    return {codecFile(videoStream("HEVC", 320, 240, 25),
                      std::vector<Bytes>(kClipSamples, hevcUnit(0x26, 20)))
                .build()};
}

Play hevcUnreadable() {
    AviFile avi = codecFile(videoStream("HEVC", 320, 240, 25),
                            std::vector<Bytes>(kClipSamples, hevcUnit(0x26, 20)));
    const Bytes file = avi.build();
    return {file, {unreadable(avi.chunks(0)[0].place)}};
}

Play mpeg2() {
    const Bytes sequence = Bytes{0, 0, 1, 0xB3} + Bytes(8, 0x5B);
    const Bytes picture = Bytes{0, 0, 1, 0} + Bytes(20, 0x77);
    return {clipOf(videoStream("MPG2", 320, 240, 25), sequence + picture, picture).build()};
}

Play mpeg2WithoutHeader() {
    const Bytes picture = Bytes{0, 0, 1, 0} + Bytes(20, 0x77);
    return {clipOf(videoStream("MPG2", 320, 240, 25), picture, picture).build()};
}

Play mpeg2Unreadable() {
    AviFile avi = clipOf(videoStream("MPG2", 320, 240, 25), patternBytes(40), patternBytes(30));
    const Bytes file = avi.build();
    return {file, {unreadable(avi.chunks(0)[0].place)}};
}

Play aacAdts() {
    const Bytes frame = Bytes{0xFF, 0xF1, 0x50, 0x80} + patternBytes(60);
    return {fileWith(audioOfTag(0xFF), {frame, frame, frame}).build()};
}

Play aacExtraData() {
    return {fileWith(audioWithExtra(0xFF, {0x13, 0x88}),
                     {patternBytes(60), patternBytes(64), patternBytes(61)})
                .build()};
}

Play aacOfImpossibleRate() {
    return {fileWith(audioWithExtra(0xFF, {0x17, 0x90}), {patternBytes(60)}).build()};
}

Play mp3Frames() {
    Stream stream = audioOfTag(0x50);
    stream.header.suggestedBufferSize = 4096;
    return {fileWith(stream, std::vector<Bytes>(kClipSamples, mpegFrame())).build()};
}

Play mp3Unconfirmed() {
    return {fileWith(audioOfTag(0x50), {mpegFrame()}).build()};
}

Play mp3OfOddSampleSize() {
    Stream stream = audioStream(0x50, 2, 44100, 16000, 2);
    stream.header.scale = 1;
    stream.header.rate = 16000;
    return {fileWith(stream, {mpegFrame(), mpegFrame()}).build()};
}

Play mp3Blocks() {
    Stream stream = audioOfTag(0x50);
    std::get<WaveFormat>(stream.format).blockAlign = kBlockSize;
    const Bytes block = mpegFrame() + mpegFrame() + Bytes(kBlockSize - 2 * kLayerIIISize, 0x2A);
    return {fileWith(stream, {junk(kBlockSize), block + block, block + block}).build(),
            {},
            {{0, {android::CMediaTrackReadOptions::SEEK, 110000}}}};
}

Play mp3Unreadable() {
    AviFile avi = codecFile(audioOfTag(0x50), {mpegFrame(), mpegFrame()});
    const Bytes file = avi.build();
    return {file, {unreadable(avi.chunks(0)[0].place)}};
}

Play pcmThatIsDts() {
    return {fileWith(pcmStream(), {dtsCore(9, 13, 1)}).build()};
}

Play extensiblePcm() {
    Stream stream = pcmStream();
    auto& wave = std::get<WaveFormat>(stream.format);
    wave.formatTag = 0xFFFE;
    wave.extra = ExtensibleFormat().toBytes();
    return {fileWith(stream, {patternBytes(64)}).build()};
}

Play ac3() {
    const Bytes sync = {0x0B, 0x77};
    return {fileWith(audioOfTag(0x2000), {Bytes(10, 0x33) + sync + Bytes(50, 0x33)}).build()};
}

Play dtsCoreFrames() {
    return dts({dtsCore(9, 13, 1)});
}

Play dtsSubstream() {
    return dts({Bytes(3, 0x33) + SubstreamHeader().frame(kLosslessAsset)});
}

Play dtsSubstreamWithoutStaticFields() {
    SubstreamHeader header;
    header.staticFields = false;
    return dts({header.frame(kExpressAsset)});
}

Play dtsCoreInSubstream() {
    const Bytes core = wordBytes(kCoreInSubstream) + dtsCoreFields(9, 13, 1);
    return dts({SubstreamHeader().header() + core + Bytes(200, 0x33)});
}

}  // namespace avitest
