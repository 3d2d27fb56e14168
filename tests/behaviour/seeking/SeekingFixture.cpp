// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/seeking/SeekingFixture.h"

#include <regex>
#include <utility>

namespace avitest {

bool operator==(const Landing& a, const Landing& b) {
    return a.chunk == b.chunk && a.timeUs == b.timeUs && a.targetUs == b.targetUs;
}

void PrintTo(const Landing& landing, std::ostream* out) {
    *out << "chunk " << landing.chunk << " @" << landing.timeUs;
    if (landing.targetUs) *out << " target " << *landing.targetUs;
}

Bytes mpeg4Frame(char kind, size_t number, size_t size) {
    if (kind == '-' || kind == 'k') return {};
    const uint8_t type = kind == 'I' ? 0x10 : kind == 'P' ? 0x50 : 0x90;
    return ByteWriter()
        .bytes(Bytes{0, 0, 1, 0xB6, type, 0xFF, static_cast<uint8_t>(number >> 16),
                     static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)})
        .fill(size, 0xAA)
        .cut(size)
        .take();
}

Stream mpeg4Stream(uint32_t rate, uint32_t scale) {
    return videoStream("FMP4", 320, 240, rate, scale);
}

void addFrames(AviFile& avi, size_t stream, const std::string& kinds, size_t size) {
    for (size_t i = 0; i < kinds.size(); ++i) {
        const bool isKey = kinds[i] == 'I' || kinds[i] == 'k';
        avi.addChunk(stream, mpeg4Frame(kinds[i], i, size), isKey ? kKey : kNoFlags);
    }
}

AviFile videoFile(const std::string& kinds, uint32_t rate, uint32_t scale) {
    AviFile avi;
    addFrames(avi, avi.addStream(mpeg4Stream(rate, scale)), kinds);
    return avi;
}

std::string groups(size_t count, size_t distance) {
    std::string kinds;
    for (size_t i = 0; i < count; ++i)
        kinds += "I" + std::string(distance - 1, 'P');
    return kinds;
}

void dropIndex(AviFile& avi) {
    avi.segment().index.copies = 0;
}

void addAudio(AviFile& avi, size_t stream, const std::vector<size_t>& sizes) {
    for (size_t i = 0; i < sizes.size(); ++i) {
        const auto seed = static_cast<uint32_t>(100000 * (stream + 1) + i);
        Bytes data =
            ByteWriter().u32(seed).bytes(patternBytes(sizes[i], seed)).cut(sizes[i]).take();
        avi.addChunk(stream, std::move(data));
    }
}

AviFile audioFile(const Stream& stream, const std::vector<size_t>& sizes) {
    AviFile avi;
    addAudio(avi, avi.addStream(stream), sizes);
    return avi;
}

std::vector<LogLine> seekLines(const LogCapture& log) {
    static const std::regex kSeeking(
        "seek|Calculated|no prev sync|error -|end of stream|isSyncFrame type|fixSyncSample");
    static const std::regex kNumber("@(L|line)[0-9]+");
    std::vector<LogLine> lines;
    for (LogLine line : log.lines()) {
        if (!std::regex_search(line.text, kSeeking)) continue;
        line.text = std::regex_replace(line.text, kNumber, "@$1#");
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> textsOf(const std::vector<LogLine>& lines) {
    std::vector<std::string> texts;
    for (const LogLine& line : lines)
        texts.push_back(line.text);
    return texts;
}

void SeekingTest::open(AviFile& avi) {
    mMemories.emplace_back(avi.build());
    mSources.emplace_back(mMemories.back());
    openSource(mSources.back());
    mNumbers.clear();
    std::map<size_t, int> counts;
    for (const MoviChunk& chunk : avi.allChunks()) {
        const int number = counts[chunk.stream]++;
        if (!chunk.data().empty()) mNumbers[chunk.data()] = number;
    }
    ASSERT_GT(countTracks(), 0u);
}

std::vector<std::pair<off64_t, size_t>> SeekingTest::reads() const {
    std::vector<std::pair<off64_t, size_t>> result;
    for (const Call& call : mSources.back().calls())
        result.emplace_back(call.offset, call.size);
    return result;
}

Landing SeekingTest::landingOf(const ReadResult& result) const {
    Landing landing;
    if (!result.buffer) {
        if (result.status == AMEDIA_ERROR_END_OF_STREAM) landing.chunk = kEndOfStream;
        return landing;
    }
    const Sample sample = sampleOf(result.buffer);
    const auto found = mNumbers.find(sample.bytes);
    landing.chunk = found == mNumbers.end() ? kUnknownChunk : found->second;
    landing.timeUs = sample.timeUs;
    landing.targetUs = sample.targetTimeUs;
    return landing;
}

Landing SeekingTest::seek(StartedTrack& track, uint32_t mode, int64_t timeUs) const {
    return landingOf(track.track().read(android::SEEK | mode, timeUs));
}

int SeekingTest::chunkAt(size_t trackIndex, uint32_t mode, int64_t timeUs) {
    StartedTrack started(track(trackIndex));
    return chunkAt(started, mode, timeUs);
}

int SeekingTest::nextChunk(StartedTrack& track) const {
    return landingOf(track.read()).chunk;
}

}  // namespace avitest
