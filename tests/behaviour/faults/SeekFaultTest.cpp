// SPDX-License-Identifier: Apache-2.0
//
// Every read of the source of a read that seeks, in each mode, with a fault at one of them: reading
// goes on, and the same seek made again lands where it does in an undisturbed session.

#include <algorithm>

#include "tests/behaviour/faults/FaultFixture.h"

namespace avitest {
namespace {

constexpr uint32_t kSeekModes = 5;
constexpr int64_t kTimesUs[] = {0, 130000, 400000, 100000000};

bool isStatusOfARead(media_status_t status) {
    return status == AMEDIA_OK || status == AMEDIA_ERROR_UNKNOWN ||
           status == AMEDIA_ERROR_END_OF_STREAM;
}

class SeekFault : public FormTest {
  protected:
    struct Target {
        size_t track;
        SeekRequest seek;
    };

    // All seeks of the test, into all tracks.
    std::vector<Target> targets() {
        std::vector<Target> all;
        const size_t tracks = open()->countTracks();
        for (size_t track = 0; track < tracks; ++track) {
            for (uint32_t mode = 0; mode < kSeekModes; ++mode) {
                for (const int64_t timeUs : kTimesUs)
                    all.push_back({track, {android::SEEK | mode, timeUs}});
            }
        }
        return all;
    }
    // What the seek gives without a fault.
    Outcome land(const Target& target) {
        const auto extractor = open();
        StartedTrack started(extractor->track(target.track));
        source().reset();
        return readOnce(started.track(), target.seek);
    }
    // Calls `check(track, what the seek gave)` after a seek with this fault, for each of its reads.
    template <typename Check>
    void strikeEachRead(const Target& target, const Fault& fault, Check check) {
        land(target);
        const uint64_t calls = source().callCount();
        for (uint64_t call = 0; call < calls; ++call) {
            const auto extractor = open();
            StartedTrack started(extractor->track(target.track));
            strike(fault, call);
            check(started.track(), readOnce(started.track(), target.seek));
        }
    }
    template <typename Check>
    void strikeEverywhere(Check check) {
        for (const Target& target : targets()) {
            const Outcome landing = land(target);
            for (const Fault& fault : allFaults()) {
                strikeEachRead(target, fault, [&](Track& track, const Outcome& struck) {
                    EXPECT_TRUE(isStatusOfARead(struck.status)) << struck.status;
                    check(target, landing, track);
                });
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    // Then a frame's time is that of its place among the B-frames behind it, once they were seen.
    bool hasBFrames() const { return GetParam().name.rfind("Mpeg4", 0) == 0; }
};

TEST_P(SeekFault, OfAnyReadIsForgottenByTheNextSeek) {
    strikeEverywhere([this](const Target& target, const Outcome& landing, Track& track) {
        const Outcome again = readOnce(track, target.seek);
        EXPECT_TRUE(landing == again || (hasBFrames() && haveSameBytes(landing, again)));
    });
}

class SeekFaultWithoutIndex : public SeekFault {};

// A key frame that could not be looked at counts as none from then on.
TEST_P(SeekFaultWithoutIndex, OfAnyReadLandsOnAFrameOfTheStream) {
    std::vector<std::vector<Outcome>> outcomes;
    const auto extractor = open();
    for (size_t i = 0; i < extractor->countTracks(); ++i) {
        StartedTrack started(extractor->track(i));
        outcomes.push_back(readToEnd(started.track()));
    }
    strikeEverywhere([&outcomes](const Target& target, const Outcome&, Track& track) {
        const Outcome again = readOnce(track, target.seek);
        const std::vector<Outcome>& all = outcomes[target.track];
        EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&again](const Outcome& outcome) {
            return haveSameBytes(outcome, again);
        }));
    });
}

// Those in which an index says which frames are key frames, or those in which none does.
std::vector<FormFile> filesWith(bool index) {
    std::vector<FormFile> files = formFiles();
    files.erase(std::remove_if(files.begin(), files.end(),
                               [index](const FormFile& file) {
                                   return (file.name.rfind("NoIndex", 0) != 0) != index;
                               }),
                files.end());
    return files;
}

INSTANTIATE_TEST_SUITE_P(Forms, SeekFault, ::testing::ValuesIn(filesWith(true)), formName);
INSTANTIATE_TEST_SUITE_P(Forms, SeekFaultWithoutIndex, ::testing::ValuesIn(filesWith(false)),
                         formName);

}  // namespace
}  // namespace avitest
