// SPDX-License-Identifier: Apache-2.0
//
// `avitool extract`: plans all files first, so that nothing is written when one of them is in the
// way, then writes track after track.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "tools/avitool/CommandParts.h"
#include "tools/avitool/Commands.h"
#include "tools/avitool/PluginLog.h"
#include "tools/avitool/extract/ExtractReport.h"
#include "tools/avitool/extract/Progress.h"
#include "tools/avitool/extract/StreamForm.h"
#include "tools/avitool/extract/TrackFiles.h"
#include "tools/avitool/extract/WriteLimit.h"

namespace avitool {

namespace fs = std::filesystem;
namespace service = android::service;

namespace {

// What is going to be made of a track.
struct Plan {
    TrackReport track;
    std::unique_ptr<StreamForm> form;
    fs::path stream;
    fs::path list;
};

std::vector<Plan> planTracks(const OpenedFile& file, const Options& options) {
    const TrackRange tracks = wantedTracks(file, options);
    const std::string stem = fs::path(options.files.front()).stem();
    std::vector<Plan> plans;
    for (size_t i = tracks.first; i < tracks.end; ++i) {
        Plan plan;
        plan.track = describeTrack(file.extractor(), i);
        plan.form = makeStreamForm(plan.track.format);
        const fs::path folder = options.output;
        plan.stream = folder / fmt::format("{}.{}.{}", stem, i, plan.form->extension());
        plan.list = folder / fmt::format("{}.{}.csv", stem, i);
        plans.push_back(std::move(plan));
    }
    return plans;
}

// Anything counts that has the name, a link that leads nowhere too.
void refuseToOverwrite(const std::vector<Plan>& plans) {
    std::string existing;
    for (const Plan& plan : plans) {
        for (const fs::path& path : {plan.stream, plan.list}) {
            std::error_code ignored;  // reported when the folder is written
            if (!fs::exists(fs::symlink_status(path, ignored))) continue;
            existing += (existing.empty() ? "" : ", ") + path.string();
        }
    }
    if (existing.empty()) return;
    throw FileError("not extracted, because --force is needed to overwrite " + existing);
}

void makeFolder(const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) throw WriteError(folder, "cannot be made: " + error.message());
}

int64_t durationOf(const TrackReport& track) {
    const auto* us = entryOf<int64_t>(track.format, AMEDIAFORMAT_KEY_DURATION);
    return us == nullptr ? 0 : *us;
}

// What the tracks of a file share.
struct Extraction {
    const OpenedFile& file;
    Progress progress;
    WriteLimit limit;
};

// Reads the track to its end or to a failure, which is recorded in it.
void readInto(TrackFiles* files, Extraction* shared, TrackReport* track) {
    const auto write = [&](uint64_t, const service::BufferHandle& buffer) {
        shared->limit.spend(buffer.rangeLength());
        files->add(buffer);
        const auto us = buffer.metaData().getInt64(AMEDIAFORMAT_KEY_TIME_US);
        shared->progress.update(us.value_or(0), files->streamSize());
    };
    try {
        track->read = readTrack(shared->file.extractor(), track->index, std::nullopt, write);
    } catch (const SampleError& error) {
        track->read.samples = files->sampleCount();
        track->read.failure = Failure{error.what(), std::nullopt};
    }
}

ExtractedTrack extractTrack(Extraction* shared, Plan plan) {
    ExtractedTrack result;
    result.track = std::move(plan.track);
    shared->progress.beginTrack(result.track.index, durationOf(result.track));
    TrackFiles files(*plan.form, plan.stream, plan.list);
    readInto(&files, shared, &result.track);
    // Of a track that does not even start there is nothing to keep.
    if (files.sampleCount() == 0 && result.track.read.failure) return result;
    files.publish();
    result.files = ExtractedFiles{plan.stream, plan.list, files.streamSize()};
    return result;
}

void extractTracks(const service::PluginLibrary& plugin, const Options& options,
                   ExtractReport* report) {
    const OpenedFile file(plugin, report->path);
    std::vector<Plan> plans = planTracks(file, options);
    if (!options.force) refuseToOverwrite(plans);
    makeFolder(options.output);
    PartialFile::removeAllOnSignals();
    // Lines of the plug-in's log and the bar would write over each other.
    Extraction shared{file, Progress(options.logPriority == ANDROID_LOG_SILENT),
                      options.force ? WriteLimit::none() : WriteLimit::of(file.size())};
    for (Plan& plan : plans)
        report->tracks.push_back(extractTrack(&shared, std::move(plan)));
}

}  // namespace

void runExtract(const Options& options, const service::PluginLibrary& plugin, Console& console) {
    ExtractReport report;
    report.path = options.files.front();
    bool cannotWrite = false;  // the problem names its own file
    const auto print = [&] {
        (options.json ? printExtractJson : printExtractText)(report, console);
    };
    pluginlog::setAbortAction([&](const std::string& reason) {
        PartialFile::removeAll();
        report.error = reason;
        print();
    });
    report.error = problemOf([&] {
        try {
            extractTracks(plugin, options, &report);
        } catch (const WriteError&) {
            cannotWrite = true;
            throw;
        }
    });
    pluginlog::setAbortAction(nullptr);
    print();
    for (const ExtractedTrack& extracted : report.tracks)
        complainAbout(report.path, extracted.track, console);
    if (!report.error) return;
    if (cannotWrite) {
        console.complain(*report.error);
    } else {
        console.complain(report.path, *report.error);
    }
}

}  // namespace avitool
