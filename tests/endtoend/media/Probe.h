// SPDX-License-Identifier: Apache-2.0
//
// What ffprobe finds in a file. All throw when it cannot be run or complains. Any thread.

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace avitest {

struct ProbedStream {
    int32_t width = 0;  // of video
    int32_t height = 0;
    int32_t channels = 0;  // of audio
    int32_t sampleRate = 0;
};

// A packet as the container has it, not cut into frames.
struct ProbedPacket {
    size_t stream = 0;
    size_t size = 0;
    uint64_t offset = 0;  // of the data in the file
    bool key = false;
};

std::vector<ProbedStream> probeStreams(const std::string& path);
std::vector<ProbedPacket> probePackets(const std::string& path);

// The kind of each picture of the first video stream ('I', 'P' or 'B'), by the offset of its data
// in the file.
std::map<uint64_t, char> probePictures(const std::string& path);

}  // namespace avitest
