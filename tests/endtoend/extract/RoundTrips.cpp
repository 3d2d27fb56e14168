// SPDX-License-Identifier: Apache-2.0
#include "tests/endtoend/extract/RoundTrips.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace avitest {

namespace {

// No message of the encoder about itself, which ffmpeg's conversion puts elsewhere among the units.
const Arguments kX264 = {"-c:v",     "libx264", "-pix_fmt", "yuv420p",
                         "-threads", "1",       "-bsf:v",   "filter_units=remove_types=6"};

Arguments x265(const char* tag) {
    return pictures() + Arguments{"-c:v",     "libx265", "-x265-params", "log-level=none:info=0",
                                  "-pix_fmt", "yuv420p", "-vtag",        tag};
}

RoundTrip trip(const std::string& name, const char* extension, const Arguments& arguments) {
    const std::string file = "trip_" + name + ".avi";
    return {name, extension, [file, arguments] { return madeFile(file, arguments); }};
}

RoundTrip soundTrip(const std::string& name, const char* extension, unsigned channels,
                    unsigned rate, const Arguments& encoder) {
    return trip(name, extension, sound(channels, rate) + encoder + Arguments{"-strict", "-2"});
}

// Start codes, and parameter sets in the samples.
RoundTrip avcStartCodes() {
    return trip("AvcStartCodes", "h264", pictures() + kX264 + Arguments{"-bf", "2", "-g", "10"});
}

// ffmpeg's conversion puts the parameter sets in front of every key frame, the tool in front of the
// first. Without them both are written anew, with start codes of one length.
RoundTrip avcPrefixed() {
    RoundTrip result = {"AvcLengthPrefixed", "h264", [] {
                            const std::string mp4 =
                                madeFile("trip_avc.mp4",
                                         pictures() + kX264 + Arguments{"-bf", "0", "-g", "10"});
                            return remuxed(mp4, "trip_avc_prefixed.avi", {"-vtag", "avc1"});
                        }};
    result.fromAvi = {"-c", "copy", "-bsf:v", "h264_mp4toannexb,filter_units=remove_types=7-8"};
    result.fromFile = {"-c", "copy", "-bsf:v", "filter_units=remove_types=7-8"};
    return result;
}

// Parameter sets in the format only, with start codes.
RoundTrip hevcInFormat() {
    RoundTrip result =
        trip("HevcInFormat", "h265", x265("hevc") + Arguments{"-flags", "+global_header"});
    // Written anew: ffmpeg's parser takes the first zero of a start code for the end of a packet.
    result.fromAvi = {"-c", "copy", "-bsf:v", "dump_extra,hevc_metadata"};
    result.fromFile = {"-c", "copy", "-bsf:v", "hevc_metadata"};
    return result;
}

// Parameter sets in the first sample, every unit behind four bytes.
RoundTrip hevcInSamples() {
    return {"HevcInSamples", "h265", [] {
                const std::string mp4 = madeFile("trip_hevc.mp4", x265("hvc1"));
                const std::string stream =
                    remuxed(mp4, "trip_hevc.hevc", {"-bsf:v", "hevc_mp4toannexb"});
                const Bytes avi = aviOf(videoStream("hevc", 96, 64, 25), stream);
                const std::string path = stream + ".avi";
                std::ofstream(path, std::ios::binary)
                    .write(reinterpret_cast<const char*>(avi.data()),
                           static_cast<std::streamsize>(avi.size()));
                return path;
            }};
}

// The headers that were made for it are taken away again.
RoundTrip rawAac(const std::string& name, unsigned channels, unsigned rate) {
    RoundTrip result = soundTrip(name, "aac", channels, rate, {"-c:a", "aac"});
    result.fromFile = {"-c", "copy", "-bsf:a", "aac_adtstoasc"};
    return result;
}

RoundTrip adts() {
    return {"AacAdts", "aac", [] {
                const std::string stream =
                    madeFile("trip_adts.aac", sound(2, 44100) + Arguments{"-c:a", "aac"});
                return remuxed(stream, "trip_adts.avi");
            }};
}

// Samples of another width become 16 bits wide.
RoundTrip waveTrip(const std::string& name, unsigned channels, unsigned rate,
                   const std::string& codec) {
    RoundTrip result = soundTrip(name, "wav", channels, rate, {"-c:a", codec});
    result.fromAvi = result.fromFile = {"-c:a", "pcm_s16le"};
    return result;
}

}  // namespace

void PrintTo(const RoundTrip& trip, std::ostream* out) {
    *out << trip.name;
}

std::vector<std::string> splitAt(char separator, const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, separator);)
        fields.push_back(field);
    return fields;
}

std::vector<RoundTrip> streamTrips() {
    return {
        avcStartCodes(),
        avcPrefixed(),
        hevcInFormat(),
        hevcInSamples(),
        trip("Mpeg4", "m4v", pictures() + Arguments{"-c:v", "mpeg4", "-vtag", "FMP4", "-g", "10"}),
        trip("Mpeg4WithBFrames", "m4v",
             pictures() + Arguments{"-c:v", "mpeg4", "-vtag", "mp4v", "-bf", "2", "-g", "12"}),
        trip("Mpeg2", "m2v", pictures() + Arguments{"-c:v", "mpeg2video", "-g", "10"}),
        trip("Mpeg1", "m2v", pictures() + Arguments{"-c:v", "mpeg1video", "-g", "10"}),
        trip("Mjpeg", "mjpeg", pictures() + Arguments{"-c:v", "mjpeg"}),
        soundTrip("Mp3", "mp3", 2, 44100, {"-c:a", "libmp3lame", "-b:a", "128k"}),
        soundTrip("Mp3Variable", "mp3", 2, 44100, {"-c:a", "libmp3lame", "-q:a", "2"}),
        soundTrip("Mp2", "mp2", 2, 48000, {"-c:a", "mp2", "-b:a", "192k"}),
        soundTrip("Ac3", "ac3", 2, 48000, {"-c:a", "ac3"}),
        soundTrip("Ac3OfSixChannels", "ac3", 6, 48000, {"-c:a", "ac3"}),
        soundTrip("Dts", "dts", 2, 48000, {"-c:a", "dca"}),
        rawAac("AacRaw", 2, 44100),
        rawAac("AacRawMono", 1, 22050),
        adts(),
    };
}

std::vector<RoundTrip> waveTrips() {
    return {
        waveTrip("Pcm8", 1, 8000, "pcm_u8"),
        waveTrip("Pcm8Stereo", 2, 11025, "pcm_u8"),
        waveTrip("Pcm16", 2, 44100, "pcm_s16le"),
        waveTrip("Pcm16OfSixChannels", 6, 48000, "pcm_s16le"),
        waveTrip("Pcm24", 2, 48000, "pcm_s24le"),
        waveTrip("Pcm32", 1, 22050, "pcm_s32le"),
        waveTrip("ALaw", 1, 8000, "pcm_alaw"),
        waveTrip("MuLaw", 2, 8000, "pcm_mulaw"),
        waveTrip("AdpcmMs", 2, 44100, "adpcm_ms"),
        waveTrip("AdpcmMsMono", 1, 22050, "adpcm_ms"),
        waveTrip("AdpcmIma", 2, 44100, "adpcm_ima_wav"),
        waveTrip("AdpcmImaMono", 1, 22050, "adpcm_ima_wav"),
    };
}

std::vector<RoundTrip> allTrips() {
    std::vector<RoundTrip> trips = streamTrips();
    for (const RoundTrip& wave : waveTrips())
        trips.push_back(wave);
    return trips;
}

RoundTrip tripOf(const std::string& name) {
    for (const RoundTrip& trip : allTrips()) {
        if (trip.name == name) return trip;
    }
    throw std::out_of_range("no trip " + name);
}

}  // namespace avitest
