// SPDX-License-Identifier: Apache-2.0
//
// Walks the tables: each text is printed with its tag, priority and arguments where and when it
// should be, and nowhere else.

#include <algorithm>
#include <cctype>
#include <ostream>
#include <set>

#include "tests/behaviour/logs/LogPattern.h"
#include "tests/behaviour/logs/LogTexts.h"
#include "tests/unit/platform/AbortTest.h"

namespace avitest {

void PrintTo(const LogText& row, std::ostream* out) {
    *out << '"' << row.text << '"';
}

namespace {

using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;

constexpr char kTag[] = "RuvoAVIExtractor";

// Whether a format says enough to know its lines by; "%s" alone does not.
bool isTelling(std::string_view format) {
    constexpr size_t kLetters = 3;
    const std::string shape = shapeOf(format, "");
    const auto letters = std::count_if(shape.begin(), shape.end(), [](char c) {
        return std::isalpha(static_cast<unsigned char>(c)) != 0;
    });
    return static_cast<size_t>(letters) >= kLetters || shape.find('=') != std::string::npos;
}

// The pattern of the text's lines, whatever their arguments.
std::string linesOf(const LogText& row) {
    return isTelling(row.text) ? shapeOf(row.text, row.line) : row.line;
}

bool isOpen(Gate gate, const LogSwitches& switches) {
    switch (gate) {
        case Gate::kExtractLog:
            return switches.extractLog;
        case Gate::kVerboseLog:
        case Gate::kDumps:
            return switches.verboseLog;
        default:
            return true;
    }
}

size_t countOf(const std::vector<LogLine>& log, const std::string& pattern) {
    return static_cast<size_t>(std::count_if(log.begin(), log.end(), [&](const LogLine& line) {
        return matchesPattern(pattern, line.text);
    }));
}

std::string nameOf(const ::testing::TestParamInfo<LogText>& info) {
    std::string name;
    bool wordEnds = true;
    for (const char* c = info.param.line; *c != '\0' && name.size() < 60; ++c) {
        const bool isLetter = std::isalnum(static_cast<unsigned char>(*c)) != 0;
        if (isLetter) name += wordEnds ? static_cast<char>(std::toupper(*c)) : *c;
        wordEnds = !isLetter;
    }
    return name + "_" + std::to_string(info.index);
}

bool isPrinted(const LogText& row, const LogSwitches& switches) {
    const std::vector<LogLine>& log = logOf(row.scenario, switches);
    return std::any_of(log.begin(), log.end(), [&](const LogLine& line) {
        return line.priority == row.priority && line.tag == kTag &&
               matchesPattern(row.line, line.text) &&
               matchesPattern(shapeOf(row.text, row.line), line.text);
    });
}

auto rowsOf(const Rows<LogText>& table) {
    return ::testing::ValuesIn(table.begin(), table.end());
}

class Logs : public ::testing::TestWithParam<LogText> {};

TEST_P(Logs, LineIsPrintedByItsGateAndNotWithoutItsCause) {
    const LogText& row = GetParam();
    for (const LogSwitches& switches : kSwitchStates) {
        SCOPED_TRACE(switches.name);
        if (isOpen(row.gate, switches)) {
            EXPECT_TRUE(isPrinted(row, switches)) << row.line;
        } else {
            const std::string lines = row.gate == Gate::kDumps ? row.line : linesOf(row);
            EXPECT_EQ(0u, countOf(logOf(row.scenario, switches), lines)) << row.line;
        }
        if (row.without == nullptr) continue;
        EXPECT_EQ(0u, countOf(logOf(row.without, switches), linesOf(row))) << row.line;
    }
}

INSTANTIATE_TEST_SUITE_P(Opening, Logs, rowsOf(kOpeningTexts), nameOf);
INSTANTIATE_TEST_SUITE_P(Stream, Logs, rowsOf(kStreamTexts), nameOf);
INSTANTIATE_TEST_SUITE_P(Index, Logs, rowsOf(kIndexTexts), nameOf);
INSTANTIATE_TEST_SUITE_P(TrackDump, Logs, rowsOf(kTrackDumpTexts), nameOf);
INSTANTIATE_TEST_SUITE_P(Codec, Logs, rowsOf(kCodecTexts), nameOf);
INSTANTIATE_TEST_SUITE_P(Source, Logs, rowsOf(kSourceTexts), nameOf);

// A text that is said never to appear does not appear in any scenario of the others.
TEST(UnreachedLogs, AppearNowhere) {
    std::set<Scenario> scenarios;
    for (const auto* table : {&kOpeningTexts, &kStreamTexts, &kIndexTexts, &kTrackDumpTexts,
                              &kCodecTexts, &kSourceTexts}) {
        for (const LogText& row : *table)
            scenarios.insert(row.scenario);
    }
    for (const UnreachedText& row : kUnreachedTexts) {
        SCOPED_TRACE(row.line);
        for (const Scenario scenario : scenarios) {
            for (const LogSwitches& switches : kSwitchStates)
                EXPECT_EQ(0u, countOf(logOf(scenario, switches), shapeOf(row.text, row.line)));
        }
    }
}

// The text as it stands in the log: the numbers of a comparison are left open.
std::string fixedPart(std::string_view text) {
    return std::string(text.substr(0, text.find("%u")));
}

TEST(FatalLogsDeathTest, EndTheProcessWithTheirText) {
    for (const FatalText& row : kFatalTexts) {
        SCOPED_TRACE(row.text);
        const auto text = AllOf(
            HasSubstr(kTag), HasSubstr(fixedPart(row.text)),
            ContainsRegex("frameworks/av/media/libstagefright/avi/RuvoAVIExtractor:[0-9]+ CHECK"));
        EXPECT_ABORT(play(row.scenario()), text);
    }
}

}  // namespace

}  // namespace avitest
