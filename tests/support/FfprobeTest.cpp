// SPDX-License-Identifier: Apache-2.0
//
// Another product's reader as judge of the builder: what ffprobe finds in a built file is what was
// put into it.

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/AviBuilder.h"
#include "tests/support/TempDir.h"

namespace avitest {
namespace {

// What ffprobe prints for the file, complaints included; it must exit with 0.
std::string probe(const Bytes& file, const std::string& entries) {
    const TempDir folder;
    const std::string path = folder.write("built.avi", std::string(file.begin(), file.end()));
    const std::string command = std::string(AVI_FFPROBE) + " -v error -of csv=p=0 -show_entries " +
                                entries + " '" + path + "' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << command;
        return {};
    }
    std::string output;
    std::array<char, 4096> part{};
    while (const size_t length = std::fread(part.data(), 1, part.size(), pipe)) {
        output.append(part.data(), length);
    }
    const int status = pclose(pipe);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << output;
    return output;
}

// The line that ffprobe prints for a packet; its position is that of the chunk's data.
std::string packetLine(const MoviChunk& item, bool key) {
    std::ostringstream line;
    line << item.stream << ',' << item.data().size() << ',' << item.place.dataOffset << ','
         << (key ? "K_" : "__") << '\n';
    return line.str();
}

// A video stream of uncompressed frames, which a reader takes whatever their bytes, and sound.
AviFile pictureAndSound() {
    AviFile avi;
    const size_t video = avi.addStream(videoStream("I420", 16, 8, 30000, 1001));
    const size_t audio = avi.addStream(pcmStream(2, 8000, 16));
    for (uint32_t i = 0; i < 3; ++i) {
        avi.addChunk(video, patternBytes(16 * 8 * 3 / 2, i), kKey);
        avi.addChunk(audio, patternBytes(1068, 100 + i), kKey);
    }
    return avi;
}

TEST(Ffprobe, FindsTheStreamsOfADefaultFile) {
    const std::string streams =
        probe(pictureAndSound().build(),
              "stream=codec_name,width,height,r_frame_rate,sample_rate,channels,nb_frames");
    EXPECT_EQ("rawvideo,16,8,30000/1001,3\npcm_s16le,8000,2,0/0,801\n", streams);
}

TEST(Ffprobe, FindsEveryChunkOfADefaultFileWhereTheBuilderSaysItIs) {
    AviFile avi = pictureAndSound();
    const Bytes file = avi.build();
    std::string expected;
    for (const MoviChunk& item : avi.allChunks())
        expected += packetLine(item, true);
    EXPECT_EQ(expected, probe(file, "packet=stream_index,size,pos,flags"));
}

}  // namespace
}  // namespace avitest
