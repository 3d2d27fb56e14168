// SPDX-License-Identifier: Apache-2.0
//
// Small and short, so that they are made and read in a moment under an emulator too.

#include "tests/endtoend/media/MediaFile.h"

namespace avitest {

namespace {

using Arguments = std::vector<std::string>;

Arguments operator+(Arguments a, const Arguments& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Arguments pictures(const std::string& size, const std::string& rate) {
    return {"-f", "lavfi", "-i", "testsrc2=duration=1:size=" + size + ":rate=" + rate};
}

Arguments sound(unsigned channels, unsigned rate) {
    return {"-f", "lavfi", "-i",
            "aevalsrc=duration=1:sample_rate=" + std::to_string(rate) + ":exprs=sin(2764*t)/2" +
                (channels == 2 ? "|sin(4000*t)/2" : "")};
}

const Arguments kMjpeg = {"-c:v", "mjpeg"};
const Arguments kMpeg4 = {"-c:v", "mpeg4", "-vtag", "FMP4", "-g", "10"};
const Arguments kMpeg4B = {"-c:v", "mpeg4", "-vtag", "mp4v", "-bf", "2", "-g", "12"};
const Arguments kH264 = {"-c:v", "libx264", "-bf", "0", "-g", "10", "-pix_fmt", "yuv420p"};
const Arguments kH264B = {"-c:v", "libx264", "-bf", "2",        "-b_strategy",
                          "0",    "-g",      "12",  "-pix_fmt", "yuv420p"};

Arguments audio(const std::string& codec, unsigned channels, unsigned rate) {
    return sound(channels, rate) + Arguments{"-c:a", codec};
}

}  // namespace

std::vector<Recipe> videoRecipes() {
    return {
        {"Mjpeg", pictures("96x64", "25") + kMjpeg},
        {"MjpegOfOddSize", pictures("99x67", "25") + kMjpeg},
        {"H264", pictures("96x64", "25") + kH264},
        {"H264WithBFrames", pictures("98x66", "30000/1001") + kH264B},
        {"H264OfOddSize",
         pictures("99x67", "25") + Arguments{"-c:v", "libx264", "-bf", "1", "-pix_fmt", "yuv444p"}},
        {"Mpeg4", pictures("96x64", "25") + kMpeg4},
        {"Mpeg4WithBFrames", pictures("98x66", "24") + kMpeg4B},
        {"Mpeg4OfOddSize", pictures("99x67", "15") + kMpeg4},
        // The writer puts an empty chunk where a frame is missing.
        {"MjpegWithDroppedFrames",
         pictures("96x64", "25") +
             Arguments{"-vf", "select=not(between(n\\,5\\,7))", "-vsync", "vfr"} + kMjpeg},
    };
}

std::vector<Recipe> audioRecipes() {
    return {
        {"Pcm8Mono", audio("pcm_u8", 1, 8000)},
        {"Pcm8Stereo", audio("pcm_u8", 2, 11025)},
        {"Pcm16Mono", audio("pcm_s16le", 1, 22050)},
        {"Pcm16Stereo", audio("pcm_s16le", 2, 44100)},
        {"Pcm24Mono", audio("pcm_s24le", 1, 22050)},
        {"Pcm24Stereo", audio("pcm_s24le", 2, 48000)},
        {"Pcm32Mono", audio("pcm_s32le", 1, 22050)},
        {"Pcm32Stereo", audio("pcm_s32le", 2, 44100)},
        {"AdpcmMsMono", audio("adpcm_ms", 1, 22050)},
        {"AdpcmMsStereo", audio("adpcm_ms", 2, 44100)},
        {"AdpcmImaMono", audio("adpcm_ima_wav", 1, 22050)},
        {"AdpcmImaStereo", audio("adpcm_ima_wav", 2, 44100)},
        {"Ac3Mono", audio("ac3", 1, 48000) + Arguments{"-b:a", "64k"}},
        {"Ac3Stereo", audio("ac3", 2, 44100) + Arguments{"-b:a", "128k"}},
    };
}

std::vector<Recipe> mixedRecipes() {
    return {
        {"MjpegAndPcm16", pictures("99x67", "25") + audio("pcm_s16le", 2, 22050) + kMjpeg},
        {"Mpeg4AndAc3", pictures("96x64", "25") + audio("ac3", 2, 48000) + kMpeg4B},
        {"H264AndAdpcm", pictures("96x64", "30") + audio("adpcm_ms", 1, 22050) + kH264B},
        {"SoundBeforePictures", pictures("96x64", "25") + audio("pcm_u8", 1, 8000) + kMjpeg +
                                    Arguments{"-map", "1:a", "-map", "0:v"}},
        {"TwoSounds", pictures("96x64", "25") + sound(1, 8000) + sound(2, 22050) + kMjpeg +
                          Arguments{"-map", "0:v", "-map", "1:a", "-map", "2:a", "-c:a:0",
                                    "pcm_s24le", "-c:a:1", "adpcm_ima_wav"}},
    };
}

Recipe mp3Recipe() {
    return {"Mp3", audio("libmp3lame", 2, 44100) + Arguments{"-b:a", "96k"}};
}

}  // namespace avitest
