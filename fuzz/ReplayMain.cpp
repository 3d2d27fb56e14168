// SPDX-License-Identifier: Apache-2.0
//
// usage: <target>_replay FILE|FOLDER...
//
// Runs files, and all files of folders, through a fuzzer's entry once, without libFuzzer.
// Whatever is wrong with one ends the process; an unreadable or missing file, or no file at all, is
// status 1.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/Entry.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> filesOf(const std::vector<std::string>& names) {
    std::vector<fs::path> files;
    for (const std::string& name : names) {
        if (!fs::is_directory(name)) {
            files.emplace_back(name);
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(name)) {
            if (entry.is_regular_file()) files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) throw std::runtime_error("no files");
    return files;
}

void replay(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + file.string());
    const std::vector<char> bytes(std::istreambuf_iterator<char>(in), {});
    // Printed first: the last line before a crash names the input.
    std::printf("%s (%zu bytes)\n", file.c_str(), bytes.size());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    try {
        LLVMFuzzerInitialize(&argc, &argv);
        for (const fs::path& file : filesOf({argv + 1, argv + argc}))
            replay(file);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "replay: %s\n", error.what());
        return 1;
    }
    return 0;
}
