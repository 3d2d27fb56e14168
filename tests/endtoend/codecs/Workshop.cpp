// SPDX-License-Identifier: Apache-2.0

#include "tests/endtoend/codecs/Workshop.h"

#include <media/NdkMediaFormat.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "tests/endtoend/media/Process.h"
#include "tests/support/TempDir.h"

namespace avitest {

namespace {

// Bytes from a dump: lines of an offset, sixteen bytes in pairs, and their characters.
Bytes bytesOfDump(const std::string& dump) {
    constexpr size_t kFirstColumn = 10;
    constexpr size_t kColumns = 40;
    Bytes result;
    std::istringstream lines(dump);
    for (std::string line; std::getline(lines, line);) {
        if (line.size() <= kFirstColumn) continue;
        std::istringstream groups(line.substr(kFirstColumn, kColumns));
        for (std::string group; groups >> group;) {
            for (size_t i = 0; i + 2 <= group.size(); i += 2)
                result.push_back(static_cast<uint8_t>(std::stoul(group.substr(i, 2), nullptr, 16)));
        }
    }
    return result;
}

// Adler-32 from zero, which is what ffmpeg's frame sums are.
uint32_t checksumOf(const Bytes& bytes) {
    constexpr uint32_t kPrime = 65521;
    uint32_t low = 0;
    uint32_t high = 0;
    for (const uint8_t byte : bytes) {
        low = (low + byte) % kPrime;
        high = (high + low) % kPrime;
    }
    return high << 16 | low;
}

}  // namespace

Arguments operator+(Arguments a, const Arguments& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Arguments pictures() {
    return {"-f", "lavfi", "-i", "testsrc2=duration=1:size=96x64:rate=25"};
}

Arguments sound(unsigned channels, unsigned rate) {
    std::string tones = "sin(2764*t)/2";
    for (unsigned i = 1; i < channels; ++i)
        tones += "|sin(" + std::to_string(3000 + 400 * i) + "*t)/2";
    return {"-f", "lavfi", "-i",
            "aevalsrc=duration=1:sample_rate=" + std::to_string(rate) + ":exprs=" + tones +
                (channels == 6 ? ":channel_layout=5.1" : "")};
}

std::string madeFile(const std::string& name, const Arguments& arguments) {
    static const TempDir folder;
    static std::map<std::string, std::string> made;
    const auto found = made.find(name);
    if (found != made.end()) return found->second;
    const std::string path = folder.file(name);
    // One thread: the machine runs other tests, and the file is the same on every one.
    outputOf(Arguments{AVI_FFMPEG, "-nostdin", "-v", "error", "-y"} + arguments +
             Arguments{"-threads", "1", "-fflags", "+bitexact", path});
    return made[name] = path;
}

std::string remuxed(const std::string& path, const std::string& name, const Arguments& options) {
    return madeFile(name, Arguments{"-i", path, "-c", "copy"} + options);
}

Bytes contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

KnownStream knownStream(const std::string& path) {
    const auto answer = nlohmann::json::parse(
        outputOf({AVI_FFPROBE, "-v", "error", "-of", "json", "-show_streams", "-show_data", path}));
    const auto& stream = answer.at("streams").at(0);
    KnownStream known;
    known.extradata = bytesOfDump(stream.value("extradata", ""));
    known.width = stream.value("width", 0);
    known.height = stream.value("height", 0);
    known.sampleAspect = stream.value("sample_aspect_ratio", "");
    known.displayAspect = stream.value("display_aspect_ratio", "");
    known.channels = stream.value("channels", 0);
    known.sampleRate = std::stoi(stream.value("sample_rate", "0"));
    return known;
}

bool operator==(const KnownFrame& a, const KnownFrame& b) {
    return a.size == b.size && a.checksum == b.checksum;
}

void PrintTo(const KnownFrame& frame, std::ostream* out) {
    *out << frame.size << " bytes (" << frame.checksum << ")";
}

// Lines of "stream, dts, pts, duration, size, sum[, ...]" behind comments.
std::vector<KnownFrame> knownFrames(const std::string& path) {
    std::istringstream lines(outputOf(
        {AVI_FFMPEG, "-nostdin", "-v", "error", "-i", path, "-c", "copy", "-f", "framecrc", "-"}));
    std::vector<KnownFrame> result;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> fields;
        std::istringstream parts(line);
        for (std::string part; std::getline(parts, part, ',');)
            fields.push_back(part);
        result.push_back({std::stoul(fields.at(4)),
                          static_cast<uint32_t>(std::stoul(fields.at(5), nullptr, 16))});
    }
    return result;
}

std::vector<KnownFrame> framesOf(const std::vector<Sample>& samples) {
    std::vector<KnownFrame> result;
    for (const Sample& sample : samples)
        result.push_back({sample.bytes.size(), checksumOf(sample.bytes)});
    return result;
}

Bytes aviOf(const Stream& kind, const std::string& streamPath) {
    const Bytes stream = contentOf(streamPath);
    AviFile avi;
    const size_t track = avi.addStream(kind);
    auto begin = stream.begin();
    for (const KnownFrame& frame : knownFrames(streamPath)) {
        const auto end = begin + static_cast<Bytes::difference_type>(frame.size);
        avi.addChunk(track, Bytes(begin, end));
        begin = end;
    }
    return avi.build();
}

Bytes firstBytes(const Bytes& bytes, size_t length) {
    if (length >= bytes.size()) return bytes;
    return Bytes(bytes.begin(), bytes.begin() + static_cast<Bytes::difference_type>(length));
}

void CodecsTest::expectSound(const std::string& type, const KnownStream& known) {
    EXPECT_EQ(mime(), type);
    EXPECT_GT(known.channels, 0);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), known.channels);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), known.sampleRate);
}

void CodecsTest::expectPicture(const std::string& type, const KnownStream& known,
                               const std::string& aspect) {
    EXPECT_EQ(mime(), type);
    EXPECT_GT(known.width, 0);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), known.width);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_HEIGHT), known.height);
    const int32_t wide = number(AMEDIAFORMAT_KEY_SAR_WIDTH).value_or(0);
    const int32_t high = number(AMEDIAFORMAT_KEY_SAR_HEIGHT).value_or(0);
    EXPECT_EQ(std::to_string(wide) + ":" + std::to_string(high), aspect);
}

}  // namespace avitest
