// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/logs/Play.h"

#include <map>
#include <utility>

#include "service/MemorySource.h"
#include "tests/support/AviBuilder.h"

namespace avitest {

using android::service::DataSource;
using android::service::Extractor;
using android::service::Fault;
using android::service::FaultySource;
using android::service::MemorySource;
using android::service::Track;

namespace {

void ask(const Extractor& extractor) {
    extractor.countTracks();
    extractor.metaData();
}

void readTracks(const Extractor& extractor, size_t tracks) {
    for (size_t i = 0; i < tracks; ++i) {
        extractor.trackMetaData(i, Extractor::kIncludeExtensiveMetaData);
        const std::unique_ptr<Track> track = extractor.track(i);
        if (track != nullptr) readTrack(*track);
    }
}

void seekTracks(const Extractor& extractor, const std::vector<SeekAndRead>& seeks) {
    for (const SeekAndRead& seek : seeks) {
        const std::unique_ptr<Track> track = extractor.track(seek.track);
        if (track != nullptr) readTrack(*track, seek.request, 1);
    }
}

void playOver(DataSource& source, const Play& play) {
    const std::unique_ptr<Extractor> extractor = Extractor::open(pluginUnderTest(), source);
    if (extractor == nullptr) return;
    ask(*extractor);
    readTracks(*extractor, extractor->countTracks());
    seekTracks(*extractor, play.seeks);
    if (play.also) play.also(*extractor);
}

// The sniffer goes by the switches as the last extractor of the process left them.
void setSwitches() {
    const LogCapture unwatched;
    MemorySource source(AviFile().build());
    Extractor::open(pluginUnderTest(), source);
}

std::vector<LogLine> record(const Play& what, const LogSwitches& switches) {
    const ScopedProperty extractLog(kExtractLogProperty, switches.extractLog ? "1" : "0");
    const ScopedProperty verboseLog(kVerboseLogProperty, switches.verboseLog ? "1" : "0");
    setSwitches();
    const LogCapture log;
    play(what);
    return log.lines();
}

}  // namespace

void play(const Play& play) {
    if (play.source) {
        const std::unique_ptr<DataSource> source = play.source();
        playOver(*source, play);
        return;
    }
    MemorySource memory(play.file);
    FaultySource source(memory);
    for (const Fault& fault : play.faults)
        source.inject(fault);
    playOver(source, play);
}

const std::vector<LogLine>& logOf(Scenario scenario, const LogSwitches& switches) {
    static std::map<std::pair<Scenario, std::pair<bool, bool>>, std::vector<LogLine>> logs;
    const auto key =
        std::make_pair(scenario, std::make_pair(switches.extractLog, switches.verboseLog));
    const auto known = logs.find(key);
    if (known != logs.end()) return known->second;
    return logs.emplace(key, record(scenario(), switches)).first->second;
}

}  // namespace avitest
