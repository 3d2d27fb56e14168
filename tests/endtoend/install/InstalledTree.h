// SPDX-License-Identifier: Apache-2.0
// This build, installed into a folder that goes with the object. One thread.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/support/TempDir.h"

namespace avitest {

class InstalledTree {
  public:
    // Throws when the installation fails.
    InstalledTree();

    const std::filesystem::path& prefix() const { return mPrefix; }
    // Everything below the prefix but folders, relative to it.
    std::set<std::string> files() const;
    // Gives the whole tree another name.
    void move();

    // Writes a file beside the tree; returns its path.
    std::string write(const std::string& name, const std::string& bytes) const {
        return mFolder.write(name, bytes);
    }
    // Runs the installed tool; returns what it prints. Throws when it does not exit with 0.
    std::string tool(const std::vector<std::string>& arguments) const;

  private:
    TempDir mFolder;
    std::filesystem::path mPrefix = mFolder.path() / "prefix";
};

}  // namespace avitest
