// SPDX-License-Identifier: Apache-2.0
//
// What the tests of stream lists share: small files of given streams, and sources that fail in
// chosen places.
// Tracks get fewer than ten samples: codec configuration that is found in video samples starts at
// the tenth and is none of these tests' matter. One thread.

#pragma once

#include <deque>
#include <string>
#include <vector>

#include "tests/support/AviBuilder.h"
#include "tests/support/LoggedFixture.h"
#include "tests/support/SparseSource.h"

namespace avitest {

// The line that reports a dropped stream, always at error priority.
LogLine dropped();
// What is logged where video is not the first stream.
constexpr char kPutFirst[] = "parseSTRF(): Put video track on the front.";

// 16-bit stereo at 8000 Hz.
Stream pcmStream();
// A video stream with bytes behind its bitmap header.
Stream videoWithExtra(ChunkId compression, Bytes extra);
// An audio stream of 1152-sample frames, one a chunk, with bytes behind its wave header.
Stream audioWithExtra(uint16_t formatTag, Bytes extra);
// A frame audio stream whose samples are of the width that its codec wants (PCM: 16).
Stream audioOfTag(uint16_t formatTag);

// The payload of strf as bytes, for tests that change its length.
Bytes formatBytes(const Stream& stream);

// Extra data of a Vorbis stream: packet count, two lengths, identification, comment and setup
// headers of 30, 20 and 40 bytes.
Bytes vorbisHeaders();

// A file with these streams, three chunks each, that differ from stream to stream. Chunks of audio
// begin with an MPEG audio header, so that no codec finds its stream empty of frames.
AviFile fileOf(std::vector<Stream> streams);

// Changes a stream list of the file.
void editStream(AviFile& avi, size_t stream, std::function<void(Chunk& strl)> edit);

// Exists as a base in front of LoggedFixture, so that it outlives the extractor.
class StreamsState {
  protected:
    std::deque<SparseSource> mSparse;
};

class StreamsFixture : protected StreamsState, public LoggedFixture {
  protected:
    // Opens a file and parses it; answers the number of tracks.
    size_t open(Bytes file);
    size_t open(AviFile& avi) { return open(avi.build()); }
    // The same with the switch for the parsers' verbose lines on.
    size_t openLogged(AviFile& avi);
    // The same through a source with faults.
    size_t openFaulty(Bytes file, const std::vector<android::service::Fault>& faults);
    // A read that asks for any byte at or behind `begin` of a marked chunk's payload fails.
    size_t openUnreadable(AviFile& avi, const std::string& mark, off64_t begin);
    // Opens the file with a chunk of its first stream made `size` bytes long: zeros follow the
    // payload, which is of even length. The lists around it agree, so that the file is whole.
    size_t openWithLongChunk(AviFile& avi, ChunkId id, uint32_t size);

    // Opens a file of one stream besides a healthy video track, which comes second. Answers whether
    // the stream became a track, and expects it to be reported when it did not.
    bool becomesTrack(Stream stream);

    std::string mime(size_t track);
    std::optional<int32_t> int32Of(size_t track, const char* key);
};

}  // namespace avitest
