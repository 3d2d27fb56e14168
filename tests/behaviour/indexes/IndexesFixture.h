// SPDX-License-Identifier: Apache-2.0
//
// What the tests of OpenDML indexes and of scanning share: a file of one video stream whose indexes
// are written field by field once its layout is known. One thread.

#pragma once

#include <string>
#include <vector>

#include "tests/behaviour/opening/FurtherRiffs.h"
#include "tests/support/SparseSource.h"

namespace avitest {

// The result codes as the log shows them.
constexpr char kIoError[] = "3EC";
constexpr char kMalformed[] = "3EF";
constexpr char kUnsupported[] = "3F2";

// A video stream (number 0) of these chunk sizes, without idx1 and without OpenDML indexes: nothing
// tells where the chunks are but the chunks themselves.
AviFile unindexedFile(size_t frames = 3);

// A file whose video stream has a super index over some standard indexes, which list its frames in
// order. Set `avi` up, call layOut(), change the indexes and call bytes(): their lengths are fixed
// by then, but whatever they say can be changed.
struct IndexedFile {
    AviFile avi;
    SuperIndex super;
    std::vector<StandardIndex> parts;

    // parts[i] lists frames[i] frames; `room` is the number of entries that the super index has
    // room for, if not one a part. idx1 is left out.
    explicit IndexedFile(std::vector<size_t> frames, size_t room = 0);

    void layOut();
    Bytes bytes() const;

    // Where the super index (or what a test puts there), and the standard index number i lie.
    ChunkPlace superPlace() const { return avi.place("indx"); }
    ChunkPlace partPlace(size_t i) const { return avi.place("part" + std::to_string(i)); }
    std::vector<Bytes> chunks() const { return avi.payloads(0); }

  private:
    std::vector<size_t> mFrames;
    Bytes mFile;
};

class IndexesFixture : public LoggedFixture {
  protected:
    // Entries of the only track's table, empty chunks included, from the log.
    std::string sampleCountLine(size_t count) const;
    // Whether the movi list was scanned for want of an index.
    bool scanned() const { return mLog.count("The riff doesn't have index!") > 0; }
    // The key flags of a track's samples.
    std::vector<bool> syncFlags(size_t track);
    // The MIME type of a track, as its log lines show it.
    std::string mimeOf(size_t track);
};

}  // namespace avitest
