// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/dumps/DumpsFixture.h"

#include <chrono>
#include <regex>

namespace avitest {

using android::service::Fault;
using android::service::FaultySource;

std::string hexText(const Bytes& bytes) {
    std::string text;
    for (const uint8_t byte : bytes)
        text += format(text.empty() ? "%02X" : " %02X", byte);
    return text;
}

std::vector<Bytes> chunksOf(size_t count, size_t size) {
    std::vector<Bytes> chunks;
    for (uint32_t i = 0; i < count; ++i)
        chunks.push_back(patternBytes(size, i));
    return chunks;
}

std::vector<size_t> numbersWithout(size_t end, size_t from, size_t to) {
    std::vector<size_t> numbers;
    for (size_t i = 0; i < end; ++i) {
        if (i < from || i >= to) numbers.push_back(i);
    }
    return numbers;
}

void DumpsTest::openStream(const Stream& stream, const std::vector<Bytes>& chunks) {
    openFileQuietly(fileOf(stream, chunks));
}

void DumpsTest::openFileQuietly(const AviFile& file) {
    openFile(AviFile(file).build());
    countTracks();
    mLog.clear();
}

void DumpsTest::openSlow(const Stream& stream, const std::vector<Bytes>& chunks) {
    FaultySource& source = openCounted(fileOf(stream, chunks).build());
    countTracks();
    source.inject(Fault::delayed(std::chrono::milliseconds(2)));
    mLog.clear();
}

std::vector<std::string> DumpsTest::debugLinesWith(const std::string& text) const {
    std::vector<std::string> result;
    for (const LogLine& line : mLog.linesWith(text)) {
        EXPECT_EQ(debug(line.text), line);
        result.push_back(line.text);
    }
    return result;
}

std::string DumpsTest::onlyDebugLineWith(const std::string& text) const {
    const std::string line = onlyLineWith(text);
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_DEBUG, text));
    return line;
}

std::vector<std::string> DumpsTest::dumps() const {
    static const std::regex kDump("\\[[^\\]]*\\]\\[\\d+\\]\\[[VAS]\\]\\[\\d+\\] .*");
    std::vector<std::string> result;
    for (const LogLine& line : log()) {
        if (!std::regex_match(line.text, kDump)) continue;
        EXPECT_EQ(debug(line.text), line);
        result.push_back(line.text);
    }
    return result;
}

std::vector<size_t> DumpsTest::dumpedIndices() const {
    std::vector<size_t> result;
    for (const std::string& dump : dumps()) {
        // The fourth number in brackets.
        size_t at = 0;
        for (int i = 0; i < 3; ++i)
            at = dump.find('[', at) + 1;
        result.push_back(std::stoul(dump.substr(dump.find('[', at) + 1)));
    }
    return result;
}

std::vector<std::string> DumpsTest::dumpsOf(const Stream& stream,
                                            const std::vector<Bytes>& chunks) {
    openStream(stream, chunks);
    readAll(0);
    return dumps();
}

std::vector<size_t> DumpsTest::indicesOf(size_t count) {
    dumpsOf(mjpegStream(), chunksOf(count));
    return dumpedIndices();
}

std::string informationOf(const std::string& dump) {
    const size_t begin = dump.find('(') + 1;
    EXPECT_EQ(')', dump.back()) << dump;
    return dump.substr(begin, dump.size() - begin - 1);
}

std::string withoutTimes(const std::string& dump) {
    return dump.substr(0, dump.find(" TimeConsumed "));
}

}  // namespace avitest
