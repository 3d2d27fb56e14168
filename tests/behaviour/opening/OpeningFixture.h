// SPDX-License-Identifier: Apache-2.0
//
// What the tests of opening a file share: small files. One thread.

#pragma once

#include <string>
#include <vector>

#include "tests/support/AviBuilder.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {

// One video stream of `frames` chunks, all key frames, of growing size.
AviFile videoFile(size_t frames = 3);

// A video stream (number 0) of three frames and a PCM stream (number 1) of two chunks.
AviFile twoStreamFile();

}  // namespace avitest
