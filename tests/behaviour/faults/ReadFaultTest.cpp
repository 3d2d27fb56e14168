// SPDX-License-Identifier: Apache-2.0
//
// Every read of the source while tracks are read from their beginning to their end, with a fault at
// one of them: what the read of the track gives then, and what the others give.

#include "tests/behaviour/faults/FaultFixture.h"

namespace avitest {
namespace {

// A track read to its end without a fault.
struct PlayedTrack {
    size_t track = 0;
    bool isCutIntoFrames = false;
    std::vector<Outcome> outcomes;
    std::vector<uint64_t> callsBy;  // reads of the source when each outcome was there

    uint64_t calls() const { return callsBy.back(); }
    // The outcome that the call-th read of the source belongs to.
    size_t outcomeOf(uint64_t call) const {
        size_t i = 0;
        while (callsBy[i] <= call)
            ++i;
        return i;
    }
};

// How many samples but the struck one differ from those of the undisturbed session.
size_t changedOthers(const PlayedTrack& session, size_t struck,
                     const std::vector<Outcome>& outcomes) {
    size_t changed = 0;
    for (size_t i = 0; i < outcomes.size(); ++i)
        changed += i != struck && !(session.outcomes[i] == outcomes[i]) ? 1 : 0;
    return changed;
}

// Whether all samples but the struck one are those of the undisturbed session, times included.
void expectOthers(const PlayedTrack& session, size_t struck, const std::vector<Outcome>& outcomes) {
    for (size_t i = 0; i < outcomes.size(); ++i) {
        if (i == struck) continue;
        EXPECT_EQ(session.outcomes[i], outcomes[i]) << "sample " << i;
    }
}

class ReadFault : public FormTest {
  protected:
    // Calls `check(session, struck outcome, outcomes)` for each fault at each read of the source.
    template <typename Check>
    void strikeEverywhere(const std::vector<Fault>& faults, Check check) {
        for (size_t track = 0; track < mExtractor->countTracks(); ++track) {
            const PlayedTrack session = play(track);
            for (const Fault& fault : faults) {
                for (uint64_t call = 0; call < session.calls(); ++call) {
                    SCOPED_TRACE("track " + std::to_string(track) + " call " +
                                 std::to_string(call));
                    strike(fault, call);
                    StartedTrack started(mExtractor->track(track));
                    check(session, session.outcomeOf(call), readToEndOf(session, started.track()));
                    ASSERT_FALSE(HasFailure());
                }
            }
        }
    }

  private:
    PlayedTrack play(size_t track) {
        source().clearFaults();
        source().reset();
        StartedTrack started(mExtractor->track(track));
        PlayedTrack session;
        session.track = track;
        session.isCutIntoFrames = isCutIntoFrames(started.track());
        do {
            session.outcomes.push_back(readOnce(started.track()));
            session.callsBy.push_back(source().callCount());
        } while (session.outcomes.back().status != AMEDIA_ERROR_END_OF_STREAM);
        return session;
    }
    // Chunk by chunk there are as many reads as without a fault. Of frames there may be fewer.
    std::vector<Outcome> readToEndOf(const PlayedTrack& session, Track& track) {
        return session.isCutIntoFrames ? readToEnd(track)
                                       : readTimes(track, session.outcomes.size());
    }

    const std::unique_ptr<Extractor> mExtractor = open();
};

// Each chunk is a sample. A look at the frames behind one is a read too: it may change the time.
TEST_P(ReadFault, OfMissingBytesIsUnknownOrChangesATimeOfOneSample) {
    size_t failures = 0;
    strikeEverywhere(missingBytes(), [&](const PlayedTrack& session, size_t struck,
                                         const std::vector<Outcome>& outcomes) {
        if (session.isCutIntoFrames) return;
        expectOthers(session, struck, outcomes);
        const bool failed = outcomes[struck].status == AMEDIA_ERROR_UNKNOWN;
        failures += failed ? 1 : 0;
        EXPECT_TRUE(failed || haveSameBytes(session.outcomes[struck], outcomes[struck]));
    });
    EXPECT_LT(0u, failures);
}

// A frame that was fetched while it was looked ahead to is struck itself, and so is the time of the
// one that asked for its type.
TEST_P(ReadFault, OfWrongBytesChangesOneFrameAndATimeBeforeIt) {
    strikeEverywhere(wrongBytes(), [](const PlayedTrack& session, size_t struck,
                                      const std::vector<Outcome>& outcomes) {
        if (session.isCutIntoFrames) return;
        EXPECT_GE(1u, changedOthers(session, struck, outcomes));
    });
}

TEST_P(ReadFault, OfMissingBytesInMpegAudioIsUnknownAndCostsTheFramesOfItsChunk) {
    strikeEverywhere(missingBytes(), [](const PlayedTrack& session, size_t struck,
                                        const std::vector<Outcome>& outcomes) {
        if (!session.isCutIntoFrames) return;
        EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, outcomes.at(struck).status);
        for (size_t i = 0; i < struck; ++i)
            EXPECT_EQ(session.outcomes[i], outcomes[i]);
        EXPECT_TRUE(endWith(outcomes, session.outcomes, struck + kFramesOfAChunk));
    });
}

TEST_P(ReadFault, OfWrongBytesInMpegAudioChangesTheFramesOfItsChunk) {
    strikeEverywhere(wrongBytes(), [](const PlayedTrack& session, size_t struck,
                                      const std::vector<Outcome>& outcomes) {
        if (!session.isCutIntoFrames) return;
        for (size_t i = 0; i < struck; ++i)
            EXPECT_EQ(session.outcomes[i], outcomes[i]);
        EXPECT_TRUE(endWith(outcomes, session.outcomes, struck + kFramesOfAChunk));
    });
}

INSTANTIATE_TEST_SUITE_P(Forms, ReadFault, ::testing::ValuesIn(formFiles()), formName);

}  // namespace
}  // namespace avitest
