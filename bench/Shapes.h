// SPDX-License-Identifier: Apache-2.0
//
// The files that are measured: each shape puts one kind of work in front of an extractor. A file is
// the same every time that it is made. Chunks of video and sound take turns, one by one.
#pragma once

#include <cstdint>
#include <string_view>

namespace avibench {

enum class Index { kIdx1, kOpenDml, kNone };
enum class Picture { kMjpeg, kMpeg4 };
enum class Sound { kNone, kAlaw, kPcm, kMp3 };

// What of the chunks is written; the rest is a hole in the file.
enum class Fill {
    kWhole,
    kHeaders,      // and the first bytes of the payload
    kFirstChunks,  // as kHeaders, and of the first chunks alone: the index says where the others
                   // are
};

struct Shape {
    std::string_view name;
    Index index;
    Picture picture;
    Sound sound;
    uint32_t frameBytes;   // of a video chunk; of MPEG-4 with B-frames on average
    uint32_t soundBytes;   // of an audio chunk
    uint32_t keyDistance;  // in frames; 0: the first frame alone is a key frame
    bool bFrames;
    Fill fill;
};

inline constexpr Shape kShapes[] = {
    {"idx1", Index::kIdx1, Picture::kMjpeg, Sound::kAlaw, 56, 56, 12, false, Fill::kWhole},
    {"opendml", Index::kOpenDml, Picture::kMjpeg, Sound::kAlaw, 12 << 10, 12 << 10, 12, false,
     Fill::kFirstChunks},
    {"scan-dense", Index::kNone, Picture::kMjpeg, Sound::kAlaw, 248, 248, 12, false, Fill::kWhole},
    {"scan-small", Index::kNone, Picture::kMjpeg, Sound::kAlaw, 1016, 1016, 12, false,
     Fill::kWhole},
    {"scan-large", Index::kNone, Picture::kMjpeg, Sound::kAlaw, 64 << 10, 64 << 10, 12, false,
     Fill::kHeaders},
    {"mpeg4-mp3", Index::kIdx1, Picture::kMpeg4, Sound::kMp3, 5000, 417, 13, true, Fill::kWhole},
    {"mjpeg-pcm", Index::kIdx1, Picture::kMjpeg, Sound::kPcm, 64 << 10, 7056, 1, false,
     Fill::kWhole},
    {"tiny", Index::kIdx1, Picture::kMjpeg, Sound::kNone, 16, 0, 12, false, Fill::kWhole},
    {"one-key", Index::kIdx1, Picture::kMpeg4, Sound::kNone, 16, 0, 0, false, Fill::kWhole},
};

// The shape of that name. Throws std::invalid_argument when there is none.
const Shape& shapeOf(std::string_view name);

constexpr size_t streamsOf(const Shape& shape) {
    return shape.sound == Sound::kNone ? 1 : 2;
}
constexpr size_t kVideoStream = 0;

// Frame `number` of the video, in the order of the file.
bool isKeyFrame(const Shape& shape, uint32_t number);
// The time from one frame to the next as the file's header gives it: scale / rate seconds.
struct FrameRate {
    uint32_t scale;
    uint32_t rate;
};
FrameRate frameRateOf(const Shape& shape);

}  // namespace avibench
