// SPDX-License-Identifier: Apache-2.0
//
// The media files of this program: made by ffmpeg when a test first asks for one, in a folder that
// goes when the program ends. One thread.

#pragma once

#include <string>
#include <vector>

#include "tests/endtoend/media/AviLayout.h"

namespace avitest {

// How to make a file, and its name among the tests.
struct Recipe {
    std::string name;
    std::vector<std::string> arguments;  // of ffmpeg, all but the output's name
};

void PrintTo(const Recipe& recipe, std::ostream* out);

// Recipes by what is in them.
std::vector<Recipe> videoRecipes();
std::vector<Recipe> audioRecipes();  // one frame or fixed-size units a chunk; MPEG audio is apart
std::vector<Recipe> mixedRecipes();
Recipe mp3Recipe();

struct MediaFile {
    std::string path;
    Bytes bytes;
    AviLayout layout;
};

// Throws when ffmpeg fails or the file is not of the expected form. The reference stays valid.
const MediaFile& mediaFile(const Recipe& recipe);

}  // namespace avitest
