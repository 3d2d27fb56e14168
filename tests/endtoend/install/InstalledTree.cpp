// SPDX-License-Identifier: Apache-2.0
#include "tests/endtoend/install/InstalledTree.h"

#include "tests/endtoend/install/ToolHelp.h"
#include "tests/endtoend/media/Process.h"

namespace avitest {

InstalledTree::InstalledTree() {
    outputOf({AVI_CMAKE, "--install", AVI_BUILD_DIR, "--prefix", mPrefix});
}

std::set<std::string> InstalledTree::files() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(mPrefix)) {
        if (!entry.is_directory()) names.insert(entry.path().lexically_relative(mPrefix));
    }
    return names;
}

void InstalledTree::move() {
    const std::filesystem::path other = mFolder.path() / "other" / "place";
    std::filesystem::create_directory(other.parent_path());
    std::filesystem::rename(mPrefix, other);
    mPrefix = other;
}

std::string InstalledTree::tool(const std::vector<std::string>& arguments) const {
    return outputOfTool(mPrefix / "bin" / "avitool", arguments);
}

}  // namespace avitest
