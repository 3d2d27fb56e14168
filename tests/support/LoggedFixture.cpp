// SPDX-License-Identifier: Apache-2.0

#include "tests/support/LoggedFixture.h"

#include <utility>

namespace avitest {

using android::service::FaultySource;

std::string LoggedFixture::onlyLineWith(const std::string& text) const {
    const std::vector<LogLine> found = mLog.linesWith(text);
    EXPECT_EQ(1u, found.size()) << text << ": " << ::testing::PrintToString(found);
    return found.size() == 1 ? found.front().text : "";
}

FaultySource& LoggedFixture::openCounted(Bytes file) {
    FaultySource& source = mSources.emplace_back(mMemory.emplace_back(std::move(file)));
    openSource(source);
    return source;
}

void LoggedFixture::openVerbosely(Bytes file) {
    setProperty(kExtractLogProperty, "1");
    setProperty(kVerboseLogProperty, "1");
    openFile(std::move(file));
}

}  // namespace avitest
