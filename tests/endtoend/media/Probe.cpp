// SPDX-License-Identifier: Apache-2.0

#include "tests/endtoend/media/Probe.h"

#include <nlohmann/json.hpp>

#include "tests/endtoend/media/Process.h"

namespace avitest {

namespace {

using nlohmann::json;

json probe(const std::string& path, const std::vector<std::string>& what) {
    std::vector<std::string> arguments = {AVI_FFPROBE, "-v", "error", "-of", "json"};
    arguments.insert(arguments.end(), what.begin(), what.end());
    arguments.push_back(path);
    return json::parse(outputOf(arguments));
}

// ffprobe writes most numbers as text.
uint64_t numberIn(const json& object, const char* key) {
    return std::stoull(object.at(key).get<std::string>());
}

}  // namespace

std::vector<ProbedStream> probeStreams(const std::string& path) {
    std::vector<ProbedStream> result;
    const json answer = probe(path, {"-show_streams"});
    for (const json& stream : answer.at("streams")) {
        ProbedStream found;
        found.width = stream.value("width", 0);
        found.height = stream.value("height", 0);
        found.channels = stream.value("channels", 0);
        found.sampleRate = std::stoi(stream.value("sample_rate", "0"));
        result.push_back(found);
    }
    return result;
}

std::vector<ProbedPacket> probePackets(const std::string& path) {
    std::vector<ProbedPacket> result;
    const json answer = probe(path, {"-fflags", "noparse", "-show_packets"});
    for (const json& packet : answer.at("packets")) {
        ProbedPacket found;
        found.stream = packet.at("stream_index").get<size_t>();
        found.size = numberIn(packet, "size");
        found.offset = numberIn(packet, "pos");
        found.key = packet.at("flags").get<std::string>().at(0) == 'K';
        result.push_back(found);
    }
    return result;
}

std::map<uint64_t, char> probePictures(const std::string& path) {
    std::map<uint64_t, char> result;
    const json answer = probe(path, {"-select_streams", "v:0", "-show_frames"});
    for (const json& frame : answer.at("frames"))
        result[numberIn(frame, "pkt_pos")] = frame.at("pict_type").get<std::string>().at(0);
    return result;
}

}  // namespace avitest
