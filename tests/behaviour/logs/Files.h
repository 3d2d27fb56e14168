// SPDX-License-Identifier: Apache-2.0
//
// The small files that the scenarios begin with. Plain values.

#pragma once

#include <string>
#include <vector>

#include "tests/behaviour/codecs/CodecsFixture.h"
#include "tests/behaviour/logs/Play.h"
#include "tests/support/AviBuilder.h"

namespace avitest {

constexpr size_t kClipSamples = 12;  // of each stream; the tenth of video brings its configuration

// The stream with these chunks; video has its first chunk key, audio all.
AviFile fileWith(const Stream& stream, const std::vector<Bytes>& chunks);
// A file of one stream: `first` and as many copies of `other` as make a clip.
AviFile clipOf(const Stream& stream, const Bytes& first, const Bytes& other);
// JPEG pictures of 40 bytes and more, and PCM that lasts as long, in turn.
AviFile twoStreams();

// Changes one stream list, the header list, or the first RIFF of twoStreams().
Play withStreamList(void (*edit)(Chunk& strl));
Play withHeaderList(void (*edit)(Chunk& hdrl));
Play withRiff(void (*edit)(Chunk& riff));

// A read of any byte of the chunk's payload from `begin` on fails.
android::service::Fault unreadable(const ChunkPlace& place, uint64_t begin = 0);
// A read of the chunk's header, or of what includes it, fails.
android::service::Fault unreadableHeader(const ChunkPlace& place);

}  // namespace avitest
