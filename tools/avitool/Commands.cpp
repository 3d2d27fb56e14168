// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/Commands.h"

#include <fmt/format.h>

#include "tools/avitool/CommandParts.h"
#include "tools/avitool/InfoPrinter.h"
#include "tools/avitool/OpenedFile.h"
#include "tools/avitool/Report.h"
#include "tools/avitool/SamplePrinter.h"
#include "tools/avitool/SeekPrinter.h"

namespace avitool {

namespace service = android::service;

namespace {

void inspect(const service::PluginLibrary& plugin, FileReport* report) {
    const OpenedFile file(plugin, report->path);
    report->confidence = file.extractor().confidence();
    report->extractor = file.extractor().name();
    report->format = file.format().entries();
    const size_t count = file.extractor().countTracks();
    for (size_t i = 0; i < count; ++i) {
        report->tracks.push_back(describeTrack(file.extractor(), i));
        report->tracks.back().read =
            readTrack(file.extractor(), i, std::nullopt, [](uint64_t, const auto&) {});
    }
}

void showTrack(const OpenedFile& file, size_t index, const Options& options, SamplePrinter& printer,
               Console& console) {
    TrackReport track = describeTrack(file.extractor(), index);
    printer.beginTrack(track);
    track.read = readTrack(file.extractor(), index, options.limit,
                           [&](uint64_t number, const service::BufferHandle& buffer) {
                               printer.sample(track, describeSample(number, buffer));
                           });
    printer.endTrack(track);
    complainAbout(options.files.front(), track, console);
}

}  // namespace

void runInfo(const Options& options, const service::PluginLibrary& plugin, Console& console) {
    const auto printer = options.json ? makeJsonInfo(console) : makeTextInfo(console);
    for (const std::string& path : options.files) {
        FileReport report;
        report.path = path;
        report.error = problemOf([&] { inspect(plugin, &report); });
        printer->add(report);
        if (report.error) console.complain(path, *report.error);
        for (const TrackReport& track : report.tracks)
            complainAbout(path, track, console);
    }
    printer->finish();
}

void runSamples(const Options& options, const service::PluginLibrary& plugin, Console& console) {
    const auto printer = options.json ? makeJsonSamples(console) : makeTextSamples(console);
    const std::string& path = options.files.front();
    bool begun = false;
    const std::optional<std::string> problem = problemOf([&] {
        const OpenedFile file(plugin, path);
        const TrackRange tracks = wantedTracks(file, options);
        printer->begin(path);
        begun = true;
        for (size_t i = tracks.first; i < tracks.end; ++i) {
            showTrack(file, i, options, *printer, console);
        }
    });
    if (!begun && options.json) printer->begin(path);
    printer->finish(problem);
    if (problem) console.complain(path, *problem);
}

void runSeek(const Options& options, const service::PluginLibrary& plugin, Console& console) {
    SeekReport report;
    report.path = options.files.front();
    report.atUs = options.seekUs;
    report.mode = options.seekMode;
    report.error = problemOf([&] {
        const OpenedFile file(plugin, report.path);
        report.landings = seekTracks(file, report.atUs, report.mode);
    });
    (options.json ? printSeekJson : printSeekText)(report, console);
    if (report.error) console.complain(report.path, *report.error);
    for (const Landing& landing : report.landings) {
        if (!landing.failure) continue;
        console.complain(report.path,
                         fmt::format("track {}: {}", landing.track, toText(*landing.failure)));
    }
}

}  // namespace avitool
