// SPDX-License-Identifier: Apache-2.0

#include "tests/endtoend/media/MediaFile.h"

#include <fstream>
#include <iterator>
#include <map>
#include <ostream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/endtoend/media/Process.h"
#include "tests/support/TempDir.h"

namespace avitest {

namespace {

Bytes contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

MediaFile make(const Recipe& recipe, const std::string& path) {
    std::vector<std::string> arguments = {AVI_FFMPEG, "-nostdin", "-v", "error", "-y"};
    arguments.insert(arguments.end(), recipe.arguments.begin(), recipe.arguments.end());
    // One thread: the machine runs other tests, and the file is the same on every one.
    arguments.insert(arguments.end(), {"-threads", "1", "-bitexact", path});
    outputOf(arguments);
    MediaFile media;
    media.path = path;
    media.bytes = contentOf(path);
    media.layout = parseLayout(media.bytes);
    return media;
}

}  // namespace

void PrintTo(const Recipe& recipe, std::ostream* out) {
    *out << recipe.name;
}

const MediaFile& mediaFile(const Recipe& recipe) {
    static const TempDir folder;
    static std::map<std::string, MediaFile> files;
    const auto found = files.find(recipe.name);
    if (found != files.end()) return found->second;
    return files[recipe.name] = make(recipe, folder.file(recipe.name + ".avi"));
}

}  // namespace avitest
