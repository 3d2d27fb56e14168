// SPDX-License-Identifier: Apache-2.0
//
// The lines about the units of samples with length prefixes.

#include "tests/behaviour/dumps/DumpsFixture.h"

namespace avitest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class NalLog : public DumpsTest {
  protected:
    // The lines about the units of one sample, whatever their priority.
    std::vector<std::string> nalLines(unsigned width, const Bytes& sample) {
        openStream(lengthPrefixedStream(width), {sample});
        StartedTrack started(track(0));
        started.sample();
        std::vector<std::string> lines;
        for (const LogLine& line : log()) {
            if (line.text.find(" LenOff ") == std::string::npos) continue;
            const bool isError = line.text.find("!!!") != std::string::npos;
            EXPECT_EQ(isError ? error(line.text) : debug(line.text), line);
            lines.push_back(line.text);
        }
        return lines;
    }
};

TEST_F(NalLog, EachUnitHasALine) {
    EXPECT_THAT(
        nalLines(4, {0, 0, 0, 2, 0x41, 0x9A, 0, 0, 0, 6, 6, 5, 4, 3, 2, 1}),
        ElementsAre(
            "[video/avc][0][0/1] 00 00 00 02 41 9A 00 00 NAL1 LenOff 4 Len 2/12/16 GOOD NAL",
            "[video/avc][0][0/1] 00 00 00 06 06 05 04 03 NAL2 LenOff 10 Len 6/6/16 GOOD "
            "NAL"));
}

TEST_F(NalLog, PrefixesMayHaveAnyWidth) {
    EXPECT_THAT(nalLines(1, {2, 0x41, 0x9A, 5, 6, 5, 4, 3, 2}),
                ElementsAre("[video/avc][0][0/1] 02 41 9A 05 06 05 04 03 NAL1 LenOff 1 Len 2/8/9 "
                            "GOOD NAL",
                            testing::HasSubstr(" NAL2 LenOff 4 Len 5/5/9 GOOD NAL")));
    EXPECT_THAT(nalLines(2, {0, 7, 1, 2, 3, 4, 5, 6, 7}),
                ElementsAre("[video/avc][0][0/1] 00 07 01 02 03 04 05 06 NAL1 LenOff 2 Len 7/7/9 "
                            "GOOD NAL"));
    EXPECT_THAT(nalLines(3, {0, 0, 6, 1, 2, 3, 4, 5, 6}),
                ElementsAre("[video/avc][0][0/1] 00 00 06 01 02 03 04 05 NAL1 LenOff 3 Len 6/6/9 "
                            "GOOD NAL"));
}

TEST_F(NalLog, CutUnitIsToldTwice) {
    EXPECT_THAT(nalLines(4, {0, 0, 0, 9, 0x41, 0x9A, 1, 2}),
                ElementsAre("[video/avc][0][0/1] 00 00 00 09 41 9A 01 02 NAL1 LenOff 4 Len 9/4/8 "
                            "MALFORMED",
                            "[video/avc][0][0/1] 00 00 00 09 41 9A 01 02 NAL1 LenOff 4 Len 9/4/8 "
                            "MALFORMED!!!"));
}

TEST_F(NalLog, EmptyUnitsAreGoodAndNotNumbered) {
    const std::vector<std::string> lines = nalLines(4, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0x41});
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_NE(std::string::npos, lines[0].find(" NAL1 LenOff 4 Len 0/9/13 GOOD NAL"));
    EXPECT_NE(std::string::npos, lines[1].find(" NAL1 LenOff 8 Len 0/5/13 GOOD NAL"));
    EXPECT_NE(std::string::npos, lines[2].find(" NAL1 LenOff 12 Len 1/1/13 GOOD NAL"));
}

// It is dropped without an error.
TEST_F(NalLog, RestShorterThanAPrefixIsMalformed) {
    const std::vector<std::string> lines = nalLines(4, {0, 0, 0, 1, 0x41, 7, 8, 9});
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_NE(std::string::npos, lines[0].find(" NAL1 LenOff 4 Len 1/4/8 GOOD NAL"));
    EXPECT_NE(std::string::npos, lines[1].find("] 07 08 09 "));
    EXPECT_NE(std::string::npos, lines[1].find(" NAL2 LenOff 5 Len 0/3/8 MALFORMED"));
}

TEST_F(NalLog, UnitsAreToldOfBetweenTheTwoDumpsOfTheirSample) {
    EXPECT_THAT(nalLines(4, {0, 0, 0, 1, 0x41}), SizeIs(1));
    ASSERT_THAT(dumps(), SizeIs(2));
    std::vector<std::string> order;
    for (const LogLine& line : log()) {
        if (line.text == dumps()[0]) order.push_back("input");
        if (line.text.find(" LenOff ") != std::string::npos) order.push_back("unit");
        if (line.text.find(" DTS/OFF/") != std::string::npos) order.push_back("chunk");
        if (line.text == dumps()[1]) order.push_back("output");
    }
    EXPECT_THAT(order, ElementsAre("input", "unit", "chunk", "output"));
}

// The fifth dump is the third sample as it was read: nothing is told of its units any more.
TEST_F(NalLog, UnitsAreToldOfWhileSamplesAreDumped) {
    openStream(lengthPrefixedStream(4), std::vector<Bytes>(20, {0, 0, 0, 1, 0x41}));
    StartedTrack started(track(0));
    const auto linesOfNext = [&] {
        mLog.clear();
        started.sample();
        return debugLinesWith(" LenOff ").size();
    };
    for (size_t i = 0; i < 20; ++i)
        EXPECT_EQ(i < 2 || i >= 15 ? 1u : 0u, linesOfNext()) << i;
}

TEST_F(NalLog, VerboseLogTellsOfAllUnits) {
    setProperty(kVerboseLogProperty, "1");
    openStream(lengthPrefixedStream(4), std::vector<Bytes>(20, {0, 0, 0, 1, 0x41}));
    readAll(0);
    EXPECT_THAT(debugLinesWith(" LenOff "), SizeIs(20));
}

// Zeros behind prefixes of one byte are empty units. A cut one behind them is an error all the
// same.
TEST_F(NalLog, ThousandUnitsOfASampleAreEnough) {
    Bytes zeros(5000);
    zeros.push_back(9);
    openStream(lengthPrefixedStream(1), {zeros});
    readAll(0);
    EXPECT_EQ(1000u, mLog.count("GOOD NAL"));
    EXPECT_EQ(1u, mLog.count("MALFORMED"));
    EXPECT_EQ(1u, mLog.count("MALFORMED!!!"));
}

TEST_F(NalLog, VerboseLogShowsEveryUnitOfASample) {
    setProperty(kVerboseLogProperty, "1");
    Bytes zeros(5000);
    zeros.push_back(9);
    openStream(lengthPrefixedStream(1), {zeros});
    readAll(0);
    EXPECT_EQ(5000u, mLog.count("GOOD NAL"));
    EXPECT_EQ(2u, mLog.count("MALFORMED"));
}

TEST_F(NalLog, CutUnitsAreErrorsWhateverIsLogged) {
    openStream(lengthPrefixedStream(4), std::vector<Bytes>(20, {0, 0, 0, 9, 0x41}));
    readAll(0);
    EXPECT_EQ(20u, mLog.count("MALFORMED!!!"));
    EXPECT_EQ(27u, mLog.count("MALFORMED"));
}

TEST_F(NalLog, UnitsBehindStartCodesAreNotToldOf) {
    openStream(videoStream("H264", 320, 240, 25), {{0, 0, 0, 1, 0x41, 0x9A, 1}});
    readAll(0);
    EXPECT_THAT(debugLinesWith(" LenOff "), IsEmpty());
}

}  // namespace
}  // namespace avitest
