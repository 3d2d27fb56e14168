// SPDX-License-Identifier: Apache-2.0
//
// What the codec configuration tests share: a stream under test, which is track 0, with a healthy
// A-law stream behind it, so that the file opens whatever becomes of the first. Video is configured
// at its tenth sample, audio at the end of the parse. One thread.

#pragma once

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

// A NAL unit behind a start code of three or four bytes.
Bytes unit3(const Bytes& nal);
Bytes unit4(const Bytes& nal);

// `count` samples: `first` and copies of `other`, by default a start code and a slice.
std::vector<Bytes> videoSamples(const Bytes& first, size_t count = 10, const Bytes& other = {});

// A file of `stream` and the A-law stream. A video stream's first sample is key, its others are
// not; audio is all key.
AviFile codecFile(Stream stream, const std::vector<Bytes>& samples);

// The lines of a hex dump: lower case as the verbose dumps are, upper case as the AVC record's.
std::string hexOf(const Bytes& bytes);
std::string upperHexOf(const Bytes& bytes);

class CodecTest : public StreamsFixture {
  protected:
    // Opens codecFile(); both streams must become tracks.
    void openSamples(const Stream& stream, const std::vector<Bytes>& samples);
    // The same with the switch for the parsers' verbose lines on.
    void openSamplesLogged(const Stream& stream, const std::vector<Bytes>& samples);
    // The same, but reads of any byte of the stream's samples `unreadable` give one byte only.
    void openSamplesWithout(const Stream& stream, const std::vector<Bytes>& samples,
                            const std::vector<size_t>& unreadable);

    std::optional<int32_t> number(const char* key) { return int32Of(0, key); }
    std::optional<Bytes> buffer(const char* key) { return trackFormat(0).getBuffer(key); }
    std::string mimeType() { return mime(0); }
    // Whether the stream under test is exposed as one that nothing can play.
    bool isBad() { return mimeType() == "video/x-unknown" || mimeType() == "audio/x-unknown"; }
};

}  // namespace avitest
