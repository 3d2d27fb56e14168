// SPDX-License-Identifier: Apache-2.0
// What ffmpeg reads from an extracted file is what it reads from the AVI file itself; the list
// beside it is what `avitool samples` shows.
#include <filesystem>

#include "tests/endtoend/avitool/ExtractFixture.h"
#include "tests/endtoend/extract/RoundTrips.h"
#include "tests/endtoend/media/Process.h"

namespace avitest {
namespace {

std::string ffmpeg(const std::string& path, const Arguments& work, const char* muxer) {
    return outputOf(Arguments{AVI_FFMPEG, "-nostdin", "-v", "error", "-i", path} + work +
                    Arguments{"-f", muxer, "-"});
}

// "size hash" of each packet: the last two fields of lines behind comments.
std::vector<std::string> packetsOf(const std::string& path, const Arguments& work) {
    constexpr size_t kSize = 4;
    constexpr size_t kHash = 5;
    std::vector<std::string> packets;
    for (const std::string& line : linesOf(ffmpeg(path, work, "framemd5"))) {
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> fields = splitAt(',', line);
        packets.push_back(fields.at(kSize) + fields.at(kHash));
    }
    return packets;
}

class ExtractTrip : public ExtractFixture, public ::testing::WithParamInterface<RoundTrip> {
  protected:
    // Extracts the file's only track into the folder "out".
    void extract() {
        mAvi = GetParam().avi();
        const ToolRun run = tool({"extract", mAvi, "-o", "out"});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        mStem = "out/" + std::filesystem::path(mAvi).stem().string() + ".0.";
    }
    std::string file() const { return pathOf(mStem + GetParam().extension); }

    std::string mAvi;
    std::string mStem;
};

class StreamTrip : public ExtractTrip {};

TEST_P(StreamTrip, PacketsAreThoseOfTheAvi) {
    ASSERT_NO_FATAL_FAILURE(extract());
    const std::vector<std::string> expected = packetsOf(mAvi, GetParam().fromAvi);
    EXPECT_GT(expected.size(), 10u);
    EXPECT_EQ(packetsOf(file(), GetParam().fromFile), expected);
}

TEST_P(StreamTrip, DecodesToThePicturesOrSoundOfTheAvi) {
    ASSERT_NO_FATAL_FAILURE(extract());
    EXPECT_EQ(packetsOf(file(), {}), packetsOf(mAvi, {}));
}

INSTANTIATE_TEST_SUITE_P(Each, StreamTrip, ::testing::ValuesIn(streamTrips()),
                         [](const auto& instance) { return instance.param.name; });

class WaveTrip : public ExtractTrip {};

TEST_P(WaveTrip, SoundIsThatOfTheAvi) {
    ASSERT_NO_FATAL_FAILURE(extract());
    EXPECT_EQ(ffmpeg(file(), GetParam().fromFile, "md5"), ffmpeg(mAvi, GetParam().fromAvi, "md5"));
}

TEST_P(WaveTrip, ChannelsAndRateAreThoseOfTheAvi) {
    ASSERT_NO_FATAL_FAILURE(extract());
    EXPECT_EQ(knownStream(file()).channels, knownStream(mAvi).channels);
    EXPECT_EQ(knownStream(file()).sampleRate, knownStream(mAvi).sampleRate);
}

INSTANTIATE_TEST_SUITE_P(Each, WaveTrip, ::testing::ValuesIn(waveTrips()),
                         [](const auto& instance) { return instance.param.name; });

class ListTrip : public ExtractTrip {
  protected:
    // The list's line for a sample as `avitool samples` has it, all but its place.
    static std::string lineOf(const Json& sample) {
        const Json& us = sample.at("timeUs");
        return sample.at("index").dump() + "," + (us.is_null() ? "" : us.dump()) + "," +
               (sample.at("sync").get<bool>() ? "1" : "0") + "," + sample.at("size").dump();
    }
    static Bytes part(const Bytes& bytes, size_t offset, size_t size) {
        if (offset > bytes.size() || size > bytes.size() - offset) return {};
        const auto begin = bytes.begin() + static_cast<Bytes::difference_type>(offset);
        return Bytes(begin, begin + static_cast<Bytes::difference_type>(size));
    }
};

TEST_P(ListTrip, HasTheSamplesAndWhereTheyAre) {
    ASSERT_NO_FATAL_FAILURE(extract());
    const Json shown = parsed(tool({"samples", mAvi, "--json"}));
    const Json samples = shown.at("tracks").at(0).at("samples");
    const std::vector<std::string> lines = linesOf(textIn(mStem + "csv"));
    ASSERT_EQ(lines.size(), samples.size() + 1);
    EXPECT_EQ(lines[0], "index,time_us,sync,size,offset");
    const Bytes stream = contentOf(file());
    for (size_t i = 0; i < samples.size(); ++i) {
        SCOPED_TRACE(i);
        const size_t comma = lines[i + 1].rfind(',');
        EXPECT_EQ(lines[i + 1].substr(0, comma), lineOf(samples[i]));
        const size_t offset = std::stoul(lines[i + 1].substr(comma + 1));
        const Bytes bytes = part(stream, offset, samples[i].at("size").get<size_t>());
        EXPECT_EQ(crcText(bytes), samples[i].at("crc32").get<std::string>());
    }
}

INSTANTIATE_TEST_SUITE_P(Each, ListTrip, ::testing::ValuesIn(allTrips()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace avitest
