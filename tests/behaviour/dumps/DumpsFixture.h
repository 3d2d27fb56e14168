// SPDX-License-Identifier: Apache-2.0
//
// What the tests of dumps share: a log from which the lines of reading are picked, short and long
// streams, and the hex text of bytes. One thread.

#pragma once

#include <string>
#include <vector>

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {

// Upper-case hex bytes with single blanks between them.
std::string hexText(const Bytes& bytes);

// `count` chunks of `size` bytes, no two alike.
std::vector<Bytes> chunksOf(size_t count, size_t size = 30);

// The numbers 0 to `end` - 1, without those of [from, to).
std::vector<size_t> numbersWithout(size_t end, size_t from, size_t to);

class DumpsTest : public LoggedFixture {
  protected:
    // Opens a file of this stream, parses it and forgets what was logged until then.
    void openStream(const Stream& stream, const std::vector<Bytes>& chunks);
    void openFileQuietly(const AviFile& file);
    // The same with every read of chunks delayed, so that time passes.
    void openSlow(const Stream& stream, const std::vector<Bytes>& chunks);

    // The texts of all debug lines that contain `text`; one of another priority is a failure.
    std::vector<std::string> debugLinesWith(const std::string& text) const;
    // The only one of them; a failure of the test when there is none or another one.
    std::string onlyDebugLineWith(const std::string& text) const;
    // Dumps of buffers, in order: what begins "[mime][0][V][", for example.
    std::vector<std::string> dumps() const;
    // The numbers of the samples that were dumped.
    std::vector<size_t> dumpedIndices() const;

    // The dumps of a stream that is read to its end.
    std::vector<std::string> dumpsOf(const Stream& stream, const std::vector<Bytes>& chunks);
    // The numbers of the samples that are dumped of a video stream of `count` chunks.
    std::vector<size_t> indicesOf(size_t count);
};

// What stands between the brackets behind the bytes of a dump.
std::string informationOf(const std::string& dump);
// A dump without what depends on time.
std::string withoutTimes(const std::string& dump);

}  // namespace avitest
