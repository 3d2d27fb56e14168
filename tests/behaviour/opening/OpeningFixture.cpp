// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {

AviFile videoFile(size_t frames) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    for (size_t i = 0; i < frames; ++i) {
        avi.addChunk(video, patternBytes(20 + 2 * i, static_cast<uint32_t>(i)));
    }
    return avi;
}

AviFile twoStreamFile() {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    const size_t audio = avi.addStream(pcmStream(2, 8000, 16));
    avi.addChunk(video, patternBytes(30, 0));
    avi.addChunk(audio, patternBytes(40, 1));
    avi.addChunk(video, patternBytes(21, 2), kNoFlags);
    avi.addChunk(audio, patternBytes(48, 3));
    avi.addChunk(video, patternBytes(26, 4));
    return avi;
}

}  // namespace avitest
