// SPDX-License-Identifier: Apache-2.0
//
// Failed assertions, and texts that nothing from outside brings about.

#include <iterator>

#include "tests/behaviour/logs/LogTexts.h"

namespace avitest {

namespace {

constexpr FatalText kFatal[] = {
    {"CHECK(mStarted) failed.", readBeforeStart},
    {"CHECK(!mStarted) failed.", startedTwice},
    {"CHECK(mBuffer != NULL) failed.", emptyAnswerForASample},
    {"CHECK(tmp != NULL) failed.", emptyAnswerForAWideSample},
    {"CHECK(clone != NULL) failed.", emptyAnswerForAFrame},
    {"CHECK(dstOffset + 4 <= mBuffer->size()) failed.", nalUnitsBeyondTheBuffer},
    {"CHECK_LE( samplingFreqIndex,11u) failed: %u vs. %u", aacOfImpossibleRate},
    {"CHECK(AMediaFormat_getString(mLastTrack->meta, AMEDIAFORMAT_KEY_MIME, &mime)) failed.",
     indexBeforeFormat},
    {"CHECK(AMediaFormat_getString(track->meta, AMEDIAFORMAT_KEY_MIME, &mime)) failed.",
     indexOfTenFramesBeforeFormat},
};

constexpr UnreachedText kUnreached[] = {
    {"CHECK(success) failed.", "CHECK(success) failed.",
     "a track that is handed out has a stream format, which gives it a MIME type"},
    {"CHECK(isSyncSample == 0 || isSyncSample == 1) failed.",
     "CHECK(isSyncSample == 0 || isSyncSample == 1) failed.", "all index readers write 0 or 1"},
    {"%s(): stream %u: no memory for more samples, drop the rest",
     "addSample(): stream 0: no memory for more samples, drop the rest",
     "takes a failing allocation of a table"},
    {"malloc(%zu) falied!", "malloc(70) falied!", "takes a failing allocation of a few bytes"},
    {"%s(%s): seekTime of track %d not found!",
     "getAudioSeekTimeByTrackId(audio/raw): seekTime of track 1 not found!",
     "every audio stream gets its record with its format"},
};

}  // namespace

const Rows<FatalText> kFatalTexts = {std::begin(kFatal), std::size(kFatal)};
const Rows<UnreachedText> kUnreachedTexts = {std::begin(kUnreached), std::size(kUnreached)};

}  // namespace avitest
