// SPDX-License-Identifier: Apache-2.0
// A folder of one's own for a test's files, deleted with everything in it. One thread.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace avitest {

class TempDir {
  public:
    TempDir() {
        std::string name = std::filesystem::temp_directory_path() / "avi-test-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        mPath = name;
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    const std::filesystem::path& path() const { return mPath; }

    /** The path of a file in it, which need not be there. */
    std::string file(const std::string& name) const { return mPath / name; }

    /** Writes a file of these bytes and returns its path. */
    std::string write(const std::string& name, const std::string& bytes) const {
        const std::string path = file(name);
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

  private:
    std::filesystem::path mPath;
};

}  // namespace avitest
