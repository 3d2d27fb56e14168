// SPDX-License-Identifier: Apache-2.0
//
// Media made by ffmpeg and what ffmpeg knows of them. Each file is made when a test first asks for
// it, once a program, in a folder that goes when the program ends. Everything throws when ffmpeg
// cannot be run or complains. One thread.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/endtoend/media/AviLayout.h"
#include "tests/support/AviBuilder.h"
#include "tests/support/ExtractorFixture.h"

namespace avitest {

using Arguments = std::vector<std::string>;

Arguments operator+(Arguments a, const Arguments& b);

// One second of moving pictures, 96 x 64 at 25 Hz.
Arguments pictures();
// One second of tones; 1, 2 or 6 channels.
Arguments sound(unsigned channels, unsigned rate);

// The path of the file `name`, made with these arguments. The extension names the container.
std::string madeFile(const std::string& name, const Arguments& arguments);
// The same streams in another container.
std::string remuxed(const std::string& path, const std::string& name,
                    const Arguments& options = {});

Bytes contentOf(const std::string& path);

// What ffmpeg knows of the first stream of a file.
struct KnownStream {
    Bytes extradata;
    int32_t width = 0;
    int32_t height = 0;
    std::string sampleAspect;   // "16:11"
    std::string displayAspect;  // of the whole picture
    int32_t channels = 0;
    int32_t sampleRate = 0;
};

KnownStream knownStream(const std::string& path);

// A frame as ffmpeg's parser cuts it.
struct KnownFrame {
    size_t size = 0;
    uint32_t checksum = 0;
};

bool operator==(const KnownFrame& a, const KnownFrame& b);
void PrintTo(const KnownFrame& frame, std::ostream* out);

std::vector<KnownFrame> knownFrames(const std::string& path);
// The same of samples that were read.
std::vector<KnownFrame> framesOf(const std::vector<Sample>& samples);

// A raw stream as a track of this kind, one of ffmpeg's frames a chunk.
Bytes aviOf(const Stream& kind, const std::string& streamPath);

// The first `length` bytes, or all.
Bytes firstBytes(const Bytes& bytes, size_t length);

class CodecsTest : public ExtractorFixture {
  protected:
    void openPath(const std::string& path) { openFile(contentOf(path)); }

    std::string mime(size_t index = 0) { return text(AMEDIAFORMAT_KEY_MIME, index); }
    std::string text(const char* key, size_t index = 0) {
        return trackFormat(index).getString(key).value_or("");
    }
    std::optional<int32_t> number(const char* key, size_t index = 0) {
        return trackFormat(index).getInt32(key);
    }
    // Empty when there is none.
    Bytes buffer(const char* key, size_t index = 0) {
        return trackFormat(index).getBuffer(key).value_or(Bytes());
    }
    // Channels and rate as ffmpeg has them.
    void expectSound(const std::string& type, const KnownStream& known);
    // The size as ffmpeg has it, and this aspect ratio.
    void expectPicture(const std::string& type, const KnownStream& known,
                       const std::string& aspect);
};

}  // namespace avitest
