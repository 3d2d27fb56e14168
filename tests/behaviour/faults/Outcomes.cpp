// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/faults/Outcomes.h"

#include <algorithm>
#include <ostream>

namespace avitest {

using android::service::ReadResult;
using android::service::Track;

bool operator==(const Outcome& a, const Outcome& b) {
    return a.status == b.status && a.sample == b.sample;
}

void PrintTo(const Outcome& outcome, std::ostream* out) {
    if (outcome.sample) {
        PrintTo(*outcome.sample, out);
    } else {
        *out << "status " << outcome.status;
    }
}

bool haveSameBytes(const Outcome& a, const Outcome& b) {
    if (!a.sample || !b.sample) return a == b;
    return a.sample->bytes == b.sample->bytes;
}

Outcome readOnce(Track& track, const SeekRequest& seek) {
    const ReadResult result = track.read(seek.options, seek.timeUs);
    EXPECT_EQ(result.status == AMEDIA_OK, static_cast<bool>(result.buffer))
        << "status " << result.status << " and buffer do not agree";
    Outcome outcome;
    outcome.status = result.status;
    if (result.status == AMEDIA_OK && result.buffer) outcome.sample = sampleOf(result.buffer);
    return outcome;
}

std::vector<Outcome> readTimes(Track& track, size_t count) {
    std::vector<Outcome> outcomes;
    while (outcomes.size() < count)
        outcomes.push_back(readOnce(track));
    return outcomes;
}

std::vector<Outcome> readToEnd(Track& track) {
    constexpr size_t kMostReads = 1000;
    std::vector<Outcome> outcomes;
    do {
        outcomes.push_back(readOnce(track));
    } while (outcomes.back().status != AMEDIA_ERROR_END_OF_STREAM && outcomes.size() < kMostReads);
    EXPECT_GT(kMostReads, outcomes.size());
    return outcomes;
}

bool endWith(const std::vector<Outcome>& outcomes, const std::vector<Outcome>& all, size_t from) {
    const auto begin = all.begin() + static_cast<ptrdiff_t>(std::min(from, all.size() - 1));
    const auto expected = all.end() - begin;
    return expected <= static_cast<ptrdiff_t>(outcomes.size()) &&
           std::equal(begin, all.end(), outcomes.end() - expected, haveSameBytes);
}

bool isCutIntoFrames(const Track& track) {
    const auto mime = track.getFormat().format.getString(AMEDIAFORMAT_KEY_MIME);
    return mime && mime->rfind("audio/mpeg", 0) == 0;
}

}  // namespace avitest
