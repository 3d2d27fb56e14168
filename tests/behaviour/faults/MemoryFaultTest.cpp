// SPDX-License-Identifier: Apache-2.0
//
// Every request for memory that may fail while a file is parsed and while its tracks are read, of
// which one fails. The function tables are made while nothing does: the platform's helpers make
// them, and do not look whether there is memory.

#include <algorithm>

#include "tests/behaviour/faults/FaultFixture.h"
#include "tests/behaviour/robustness/AllocationWatch.h"

namespace avitest {
namespace {

constexpr size_t kNone = SIZE_MAX;

class MemoryFault : public FormTest {
  protected:
    using Outcomes = std::vector<Outcome>;

    void SetUp() override {
        if (!NoMemoryFor::isPossible()) GTEST_SKIP() << "the sanitizer's allocator cannot fail";
    }

    // Opens the file. Request number `failing` of the parse fails; the answer is their number.
    size_t parse(size_t failing) {
        mExtractor = Extractor::open(pluginUnderTest(), source());
        const NoMemoryOnce once(failing);
        mExtractor->countTracks();
        return once.requests();
    }
    // Reads a track. Request number `failing` of that fails. Without memory for its configuration
    // or its table a track may have nothing to start with.
    Outcomes read(size_t track, size_t failing, size_t* requests = nullptr) {
        const std::unique_ptr<Track> source = mExtractor->track(track);
        const NoMemoryOnce once(failing);
        android::service::BufferGroup group;
        if (source->start(group) != AMEDIA_OK) return {};
        Outcomes outcomes = readToEnd(*source);
        EXPECT_EQ(AMEDIA_OK, source->stop());
        EXPECT_EQ(0u, group.heldCount());
        if (requests != nullptr) *requests = once.requests();
        return outcomes;
    }
    // What a seek in a track gives: a sample, or a status of a track without samples.
    media_status_t seek(size_t track) {
        const std::unique_ptr<Track> source = mExtractor->track(track);
        android::service::BufferGroup group;
        if (source->start(group) != AMEDIA_OK) return AMEDIA_ERROR_END_OF_STREAM;
        const Outcome landing = readOnce(*source, {android::SEEK, 0});
        EXPECT_EQ(AMEDIA_OK, source->stop());
        return landing.status;
    }
    size_t tracks() { return mExtractor->countTracks(); }
    std::vector<Outcomes> readAll() {
        std::vector<Outcomes> all;
        for (size_t i = 0; i < mExtractor->countTracks(); ++i)
            all.push_back(read(i, kNone));
        return all;
    }

  private:
    std::unique_ptr<Extractor> mExtractor;
};

TEST_P(MemoryFault, InTheParseTouchesOneTrackAtMost) {
    const size_t requests = parse(kNone);
    ASSERT_LT(0u, requests);
    const std::vector<Outcomes> whole = readAll();
    for (size_t number = 0; number < requests; ++number) {
        SCOPED_TRACE("request " + std::to_string(number));
        parse(number);
        const std::vector<Outcomes> left = readAll();
        const auto touched = std::count_if(whole.begin(), whole.end(), [&](const Outcomes& track) {
            return std::find(left.begin(), left.end(), track) == left.end();
        });
        EXPECT_GE(1, touched);
        EXPECT_GE(left.size() + 1, whole.size());
    }
    parse(kNone);
    EXPECT_EQ(whole, readAll());
}

// Audio follows seeks in video through a record of its own, which may be what is missing.
TEST_P(MemoryFault, InTheParseLeavesTracksThatCanBeSoughtIn) {
    const size_t requests = parse(kNone);
    for (size_t number = 0; number < requests; ++number) {
        SCOPED_TRACE("request " + std::to_string(number));
        parse(number);
        size_t landed = 0;
        for (size_t track = 0; track < tracks(); ++track) {
            const media_status_t status = seek(track);
            EXPECT_TRUE(status == AMEDIA_OK || status == AMEDIA_ERROR_END_OF_STREAM) << status;
            landed += status == AMEDIA_OK ? 1 : 0;
        }
        EXPECT_LT(0u, landed);
    }
}

// Where there was no memory for the group's buffers, every read up to the next start fails.
TEST_P(MemoryFault, WhileReadingIsUnknownAndTheNextStartGivesEverySample) {
    parse(kNone);
    const std::vector<Outcomes> whole = readAll();
    for (size_t track = 0; track < whole.size(); ++track) {
        size_t requests = 0;
        read(track, kNone, &requests);
        ASSERT_LT(0u, requests);
        for (size_t number = 0; number < requests; ++number) {
            SCOPED_TRACE("track " + std::to_string(track) + " request " + std::to_string(number));
            const Outcomes outcomes = read(track, number);
            ASSERT_FALSE(outcomes.empty());
            const bool failed = std::any_of(outcomes.begin(), outcomes.end(), [](const Outcome& o) {
                return o.status == AMEDIA_ERROR_UNKNOWN;
            });
            EXPECT_TRUE(failed || outcomes == whole[track]);
            EXPECT_TRUE(std::all_of(outcomes.begin(), outcomes.end(), [&](const Outcome& o) {
                const Outcomes& all = whole[track];
                return !o.sample || std::find(all.begin(), all.end(), o) != all.end();
            }));
            EXPECT_EQ(whole[track], read(track, kNone));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, MemoryFault, ::testing::ValuesIn(formFiles()), formName);

}  // namespace
}  // namespace avitest
