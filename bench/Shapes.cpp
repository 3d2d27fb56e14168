// SPDX-License-Identifier: Apache-2.0
#include "bench/Shapes.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>

namespace avibench {

const Shape& shapeOf(std::string_view name) {
    const auto* found = std::find_if(std::begin(kShapes), std::end(kShapes),
                                     [name](const Shape& shape) { return shape.name == name; });
    if (found == std::end(kShapes)) {
        throw std::invalid_argument("no shape is called " + std::string(name));
    }
    return *found;
}

bool isKeyFrame(const Shape& shape, uint32_t number) {
    return shape.keyDistance == 0 ? number == 0 : number % shape.keyDistance == 0;
}

FrameRate frameRateOf(const Shape& shape) {
    // A frame of MP3 sound lasts as long as a frame of video: what takes turns belongs together.
    if (shape.sound == Sound::kMp3) return {1152, 44100};
    return {1, 25};
}

}  // namespace avibench
