// SPDX-License-Identifier: Apache-2.0
//
// What the MPEG-audio tests share: frames, streams and the chunks they are packed into. The usual
// frame is MPEG-1 Layer III of 128 kbit/s at 44100 Hz: 417 bytes, 418 with a padding byte. One
// thread.

#pragma once

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {

constexpr uint32_t kHeader = 0xFFFB9000;
constexpr uint32_t kPaddingBit = 0x200;
constexpr size_t kFrameSize = 417;
constexpr int64_t kMp3FrameUs = 26062;  // 417 bytes at 128 kbit/s, truncated

// The four bytes of a header.
Bytes headerBytes(uint32_t header);
// A frame of `size` bytes, header included, without sync bits behind the header.
Bytes frameOf(uint32_t header, size_t size, uint32_t seed = 0);
// The usual frame.
Bytes frame(uint32_t seed = 0);
// `count` usual frames, each of another content.
std::vector<Bytes> frames(size_t count);
// Bytes in which no header can be found.
Bytes noise(size_t size, uint32_t seed = 0);

Bytes joined(const std::vector<Bytes>& parts);
Bytes slice(const Bytes& bytes, size_t begin, size_t end);
// Cuts `bytes` into chunks of these sizes; what is left makes the last one.
std::vector<Bytes> split(const Bytes& bytes, const std::vector<size_t>& sizes);

// A stream counted in bytes, of which `bytesPerSec` take a second: 16000 for the usual frames.
Stream mp3Bytes(uint32_t bytesPerSec = 16000, uint16_t tag = 0x55);
// A stream counted in chunks of 1152 samples.
Stream mp3Frames(uint16_t tag = 0x55);

class MpegAudioTest : public ReadingTest {
  protected:
    // The frames of a file that one stream with these chunks makes.
    std::vector<Bytes> framesOf(const Stream& stream, const std::vector<Bytes>& chunks) {
        openStream(stream, chunks);
        return readPayloads(0);
    }
};

}  // namespace avitest
