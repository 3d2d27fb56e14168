// SPDX-License-Identifier: Apache-2.0
//
// What the tests of text tags share: files of one video stream with lists of tags, and the tags of
// the opened file. One thread.

#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/AviBuilder.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {

// A file that plays, with these chunks behind its index: nothing else suffers from their damage.
inline AviFile fileOfLists(std::vector<Chunk> lists) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(video, patternBytes(40));
    avi.segment().afterIndex = std::move(lists);
    return avi;
}

// One list of these tags, with some more of the file behind it.
inline AviFile taggedFile(const std::vector<std::pair<ChunkId, std::string_view>>& tags) {
    return fileOfLists({infoList(tags), Chunk("JUNK", Bytes(20))});
}

// A list of tags that are made chunk by chunk, with some more of the file behind it.
inline AviFile fileOfTags(std::vector<Chunk> tags) {
    return fileOfLists({Chunk::list("INFO", std::move(tags)), Chunk("JUNK", Bytes(20))});
}

class TagsFixture : public LoggedFixture {
  protected:
    // Opens the file and has it parsed.
    void open(AviFile avi) {
        openFile(avi.build());
        ASSERT_EQ(1u, countTracks());
    }
    void openLogged(AviFile avi) {
        setProperty(kExtractLogProperty, "1");
        open(std::move(avi));
    }

    std::optional<std::string> tag(const char* key) { return fileFormat().getString(key); }
    std::optional<std::string> title() { return tag("title"); }
    // How often a tag was found that has a key, while the extract log is on.
    size_t keyLines() const { return mLog.count("parseINFO(): meta key "); }
    size_t valueLines() const { return mLog.count("parseINFO(): meta value "); }
};

}  // namespace avitest
