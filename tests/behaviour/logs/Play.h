// SPDX-License-Identifier: Apache-2.0
//
// What makes log lines appear: a file and what is done with it. A scenario is a function that says
// so; its log is recorded once for each state of the log switches and kept for the whole program.
// One thread.

#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "service/DataSource.h"
#include "service/Extractor.h"
#include "service/FaultySource.h"
#include "tests/support/ExtractorFixture.h"
#include "tests/support/LogCapture.h"

namespace avitest {

// A seek with a new track object, and one read.
struct SeekAndRead {
    size_t track = 0;
    SeekRequest request;
};

struct Play {
    Bytes file;
    std::vector<android::service::Fault> faults = {};  // of the source, from the sniff on
    std::vector<SeekAndRead> seeks = {};               // in this order, after all tracks were read
    // The last thing done with the extractor.
    std::function<void(android::service::Extractor&)> also = {};
    // Instead of a source of `file` with `faults`.
    std::function<std::unique_ptr<android::service::DataSource>()> source = {};
};

using Scenario = Play (*)();

// The two log switches.
struct LogSwitches {
    const char* name = "";
    bool extractLog = false;
    bool verboseLog = false;
};

constexpr LogSwitches kSwitchStates[] = {{"switches off", false, false},
                                         {"extract-log on", true, false},
                                         {"verbose-log on", false, true},
                                         {"both logs on", true, true}};

// Sniffs and opens the file, asks for everything, reads every track to its end, seeks, and lets the
// extractor go.
void play(const Play& play);

// What the plug-in logs meanwhile.
const std::vector<LogLine>& logOf(Scenario scenario, const LogSwitches& switches);

}  // namespace avitest
