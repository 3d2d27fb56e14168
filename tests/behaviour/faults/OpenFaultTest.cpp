// SPDX-License-Identifier: Apache-2.0
//
// Every read of the source while a file is sniffed and parsed, with a fault at one of them: the
// extractor is whole or refuses, and says the same each time that it is asked.

#include "tests/behaviour/faults/FaultFixture.h"

namespace avitest {
namespace {

// What an extractor answers to all queries, and what its tracks hold.
struct Answers {
    std::vector<std::string> formats;  // of the file, then of the tracks
    std::vector<std::vector<Outcome>> outcomes;
};

bool operator==(const Answers& a, const Answers& b) {
    return a.formats == b.formats && a.outcomes == b.outcomes;
}

// A file without tracks has no answer to any query; in one with tracks each of them has.
Answers ask(Extractor& extractor) {
    Answers answers;
    const size_t count = extractor.countTracks();
    const media_status_t expected = count == 0 ? AMEDIA_ERROR_UNKNOWN : AMEDIA_OK;
    const auto file = extractor.metaData();
    EXPECT_EQ(expected, file.status);
    answers.formats.push_back(file.format.toString());
    for (size_t i = 0; i < count; ++i) {
        const auto track = extractor.trackMetaData(i);
        EXPECT_EQ(expected, track.status);
        EXPECT_TRUE(track.format.getString(AMEDIAFORMAT_KEY_MIME));
        answers.formats.push_back(track.format.toString());
    }
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, extractor.trackMetaData(count).status);
    EXPECT_EQ(nullptr, extractor.track(count));
    EXPECT_EQ(AMEDIA_ERROR_INVALID_OPERATION, extractor.setMediaCas(nullptr, 0));
    return answers;
}

// The same with all samples. A track without samples does not start.
Answers askAndRead(Extractor& extractor) {
    Answers answers = ask(extractor);
    for (size_t i = 0; i < extractor.countTracks(); ++i) {
        android::service::BufferGroup group;
        const std::unique_ptr<Track> track = extractor.track(i);
        answers.outcomes.emplace_back();
        if (track->start(group) != AMEDIA_OK) continue;
        answers.outcomes.back() = readToEnd(*track);
        EXPECT_EQ(AMEDIA_OK, track->stop());
        EXPECT_EQ(0u, group.heldCount());
    }
    return answers;
}

class OpenFault : public FormTest {
  protected:
    // How many reads sniffing and parsing take.
    uint64_t calls() {
        source().clearFaults();
        source().reset();
        const auto extractor = Extractor::open(pluginUnderTest(), source());
        EXPECT_LT(0u, extractor->countTracks());
        return source().callCount();
    }
    Answers undisturbed() { return askAndRead(*open()); }

    // Calls `check(extractor)` for each fault at each of these reads; the extractor is null when
    // the file was not claimed.
    template <typename Check>
    void strikeEverywhere(const std::vector<Fault>& faults, Check check) {
        const uint64_t count = calls();
        for (const Fault& fault : faults) {
            for (uint64_t call = 0; call < count; ++call) {
                SCOPED_TRACE("call " + std::to_string(call));
                strike(fault, call);
                const auto extractor = Extractor::open(pluginUnderTest(), source());
                check(extractor.get());
                ASSERT_FALSE(HasFailure());
            }
        }
    }
};

// The first headers are read again; any other failure is the file's for good.
TEST_P(OpenFault, OfAnyReadLeavesAWholeExtractorOrOneThatRefuses) {
    const Answers whole = undisturbed();
    strikeEverywhere(allFaults(), [&whole](Extractor* extractor) {
        if (extractor == nullptr) return;
        const bool refused = extractor->countTracks() == 0;
        const Answers first = askAndRead(*extractor);
        const Answers second = askAndRead(*extractor);
        EXPECT_TRUE(first == second);
        EXPECT_TRUE(!refused || first.outcomes.empty() || first == whole);
    });
}

TEST_P(OpenFault, OfAnyReadIsForgottenByTheNextExtractor) {
    const Answers whole = undisturbed();
    strikeEverywhere(allFaults(), [&](Extractor* extractor) {
        if (extractor != nullptr) extractor->countTracks();
        EXPECT_TRUE(whole == askAndRead(*Extractor::open(pluginUnderTest(), source())));
    });
}

TEST_P(OpenFault, OfTheSniffersReadClaimsNothing) {
    for (const Fault& fault : allFaults()) {
        strike(fault, 0);
        EXPECT_EQ(nullptr, Extractor::open(pluginUnderTest(), source()));
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, OpenFault, ::testing::ValuesIn(formFiles()), formName);

}  // namespace
}  // namespace avitest
