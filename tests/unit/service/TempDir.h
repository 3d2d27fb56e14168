// SPDX-License-Identifier: Apache-2.0
// A folder of one's own for a test's files, deleted with everything in it. One thread.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace android::service {

class TempDir {
  public:
    TempDir() {
        std::string name = std::filesystem::temp_directory_path() / "service-test-XXXXXX";
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

    /** Writes a file of these bytes and returns its path. */
    std::string write(const std::string& name, const std::string& bytes) const {
        const std::filesystem::path file = mPath / name;
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }

  private:
    std::filesystem::path mPath;
};

}  // namespace android::service
