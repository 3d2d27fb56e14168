// SPDX-License-Identifier: Apache-2.0
//
// Every acquisition of a buffer while tracks are read, of which one fails or gives a buffer that is
// too small: what the read of the track gives then, and what the others give.

#include "tests/behaviour/faults/FaultFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {
namespace {

using Answer = RecordingGroup::Answer;

class BufferFault : public FormTest {
  protected:
    struct Session {
        bool isCutIntoFrames = false;
        std::vector<Outcome> outcomes;
        std::vector<size_t> acquisitionsBy;  // when each outcome was there
    };

    // Calls `check(session, struck outcome, outcomes)` with this answer to each acquisition.
    template <typename Check>
    void answerEverywhere(Answer answer, Check check) {
        for (size_t track = 0; track < mExtractor->countTracks(); ++track) {
            const Session session = play(track);
            const size_t acquisitions = session.acquisitionsBy.back();
            for (size_t call = 0; call < acquisitions; ++call) {
                SCOPED_TRACE("track " + std::to_string(track) + " acquisition " +
                             std::to_string(call));
                RecordingGroup group;
                group.answer(call, answer);
                GroupReader reader(mExtractor->track(track), &group);
                size_t struck = 0;
                while (session.acquisitionsBy[struck] <= call)
                    ++struck;
                check(session, struck, readToEndOf(session, reader.track()));
                ASSERT_FALSE(HasFailure());
            }
        }
    }

  private:
    Session play(size_t track) {
        RecordingGroup group;
        GroupReader reader(mExtractor->track(track), &group);
        Session session;
        session.isCutIntoFrames = isCutIntoFrames(reader.track());
        do {
            session.outcomes.push_back(readOnce(reader.track()));
            session.acquisitionsBy.push_back(group.acquireCount());
        } while (session.outcomes.back().status != AMEDIA_ERROR_END_OF_STREAM);
        return session;
    }
    std::vector<Outcome> readToEndOf(const Session& session, Track& track) {
        return session.isCutIntoFrames ? readToEnd(track)
                                       : readTimes(track, session.outcomes.size());
    }

    const std::unique_ptr<Extractor> mExtractor = open();
};

TEST_P(BufferFault, FailureIsUnknownAndCostsOneSampleOrTheFramesOfAChunk) {
    for (const Answer answer : {Answer::kFailure, Answer::kNoMemory, Answer::kFailureWithBuffer}) {
        answerEverywhere(answer, [](const Session& session, size_t struck,
                                    const std::vector<Outcome>& outcomes) {
            EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, outcomes.at(struck).status);
            for (size_t i = 0; i < struck; ++i)
                EXPECT_EQ(session.outcomes[i], outcomes[i]);
            const size_t lost = session.isCutIntoFrames ? kFramesOfAChunk : 1;
            EXPECT_TRUE(endWith(outcomes, session.outcomes, struck + lost));
        });
    }
}

TEST_P(BufferFault, BufferThatIsTooSmallCostsOneSampleOrTheFramesOfAChunk) {
    answerEverywhere(Answer::kTooSmall, [](const Session& session, size_t struck,
                                           const std::vector<Outcome>& outcomes) {
        const Outcome& failed = outcomes.at(struck);
        if (failed.sample) {
            EXPECT_TRUE(failed.sample->bytes.empty());
        } else {
            EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, failed.status);
        }
        for (size_t i = 0; i < struck; ++i)
            EXPECT_EQ(session.outcomes[i], outcomes[i]);
        const size_t lost = session.isCutIntoFrames ? kFramesOfAChunk : 1;
        EXPECT_TRUE(endWith(outcomes, session.outcomes, struck + lost));
    });
}

INSTANTIATE_TEST_SUITE_P(Forms, BufferFault, ::testing::ValuesIn(formFiles()), formName);

}  // namespace
}  // namespace avitest
