// SPDX-License-Identifier: Apache-2.0
// Looks at the files that the tool wrote into the test's folder. One thread.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

class ExtractFixture : public ToolFixture {
  protected:
    // Names of everything in a folder, hidden files too, sorted; empty if there is no such folder.
    std::vector<std::string> filesIn(const std::string& folder) const {
        std::vector<std::string> names;
        std::error_code none;
        for (const auto& entry : std::filesystem::directory_iterator(pathOf(folder), none))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string textIn(const std::string& name) const {
        std::ifstream in(pathOf(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
};

}  // namespace avitest
