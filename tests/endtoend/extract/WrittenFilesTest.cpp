// SPDX-License-Identifier: Apache-2.0
// Extracted files against those that ffmpeg writes of the same track, byte by byte.
#include <algorithm>
#include <filesystem>

#include "tests/endtoend/avitool/ExtractFixture.h"
#include "tests/endtoend/extract/RoundTrips.h"

namespace avitest {
namespace {

class WrittenFile : public ExtractFixture {
  protected:
    Bytes ours(const RoundTrip& trip) {
        const std::string avi = trip.avi();
        const ToolRun run = tool({"extract", avi, "-o", "out"});
        EXPECT_EQ(run.status, 0) << run.err;
        const std::string stem = std::filesystem::path(avi).stem();
        return contentOf(pathOf("out/" + stem + ".0." + trip.extension));
    }
    static Bytes theirs(const RoundTrip& trip, const Arguments& options = {}) {
        return contentOf(
            remuxed(trip.avi(), "written_" + trip.name + "." + trip.extension, options));
    }
};

class WrittenStream : public WrittenFile, public ::testing::WithParamInterface<const char*> {};

TEST_P(WrittenStream, IsTheOneThatFfmpegWrites) {
    const RoundTrip trip = tripOf(GetParam());
    EXPECT_TRUE(ours(trip) == theirs(trip, trip.fromAvi));
}

// Of AAC without headers this compares the headers that are made for it.
INSTANTIATE_TEST_SUITE_P(Each, WrittenStream,
                         ::testing::Values("AvcStartCodes", "HevcInSamples", "Mpeg2", "Mpeg1",
                                           "Mjpeg", "Mp2", "Ac3", "Dts", "AacRaw", "AacRawMono",
                                           "AacAdts", "Pcm8", "Pcm16", "Pcm24", "Pcm32"),
                         [](const auto& instance) { return std::string(instance.param); });

class WrittenWave : public WrittenFile, public ::testing::WithParamInterface<const char*> {};

TEST_P(WrittenWave, DiffersInNothingButTheBitRate) {
    constexpr size_t kBytesPerSecond = 28;
    constexpr size_t kBlock = 32;
    const RoundTrip trip = tripOf(GetParam());
    Bytes expected = theirs(trip);
    const Bytes written = ours(trip);
    ASSERT_EQ(written.size(), expected.size());
    // ffmpeg keeps the rate that the AVI file tells, which is not that of the blocks.
    std::copy(written.begin() + kBytesPerSecond, written.begin() + kBlock,
              expected.begin() + kBytesPerSecond);
    EXPECT_EQ(firstBytes(written, 100), firstBytes(expected, 100));
    EXPECT_TRUE(written == expected);
}

INSTANTIATE_TEST_SUITE_P(Each, WrittenWave,
                         ::testing::Values("ALaw", "MuLaw", "AdpcmMs", "AdpcmMsMono", "AdpcmIma",
                                           "AdpcmImaMono"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST_F(WrittenFile, ParameterSetsOfAnHevcFormatStandInFront) {
    const RoundTrip trip = tripOf("HevcInFormat");
    EXPECT_TRUE(ours(trip) == theirs(trip, {"-bsf:v", "dump_extra"}));
}

TEST_F(WrittenFile, ParameterSetsOfAnAvcRecordStandInFrontOnce) {
    constexpr uint8_t kSequenceSet = 0x67;
    const Bytes written = ours(tripOf("AvcLengthPrefixed"));
    const Bytes begin = {0, 0, 0, 1, kSequenceSet};
    EXPECT_EQ(firstBytes(written, begin.size()), begin);
    const auto again = std::search(written.begin() + 1, written.end(), begin.begin(), begin.end());
    EXPECT_EQ(again, written.end());
}

}  // namespace
}  // namespace avitest
