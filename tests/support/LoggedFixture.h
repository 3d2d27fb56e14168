// SPDX-License-Identifier: Apache-2.0
//
// Opens files as ExtractorFixture does, with a log that is recorded from before the file is opened
// until its extractor is gone, and through sources whose reads are counted and can be made to fail.
// One thread.

#pragma once

#include <deque>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "service/FaultySource.h"
#include "service/MemorySource.h"
#include "tests/support/ExtractorFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/LogLines.h"

namespace avitest {

// Exists as a base in front of ExtractorFixture, so that both outlive the extractor.
class LoggedState {
  protected:
    LogCapture mLog;
    std::deque<android::service::MemorySource> mMemory;
    std::deque<android::service::FaultySource> mSources;
};

class LoggedFixture : protected LoggedState, public ExtractorFixture {
  protected:
    std::vector<LogLine> log() const { return mLog.lines(); }
    // The whole text of the only line that contains `text`; a failure of the test when there is
    // none or another one.
    std::string onlyLineWith(const std::string& text) const;

    // Opens the file through a source whose reads are counted and can be made to fail.
    android::service::FaultySource& openCounted(Bytes file);

    // Opens the file with the switches for all verbose lines on.
    void openVerbosely(Bytes file);
};

}  // namespace avitest
