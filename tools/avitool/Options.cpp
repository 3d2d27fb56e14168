// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/Options.h"

#include <CLI/CLI.hpp>

#include <sstream>

#include "tools/avitool/OptionValues.h"
#include "tools/avitool/Text.h"

namespace avitool {

namespace {

constexpr const char* kFooter = R"(
Properties for --set, each off with 0 and on with any other number:
  vendor.ruvo.avi.extract.log    the plug-in logs what it parses   (see it with --log verbose)
  vendor.ruvo.avi.verbose.log    the plug-in logs every chunk      (see it with --log verbose)
  vendor.ruvo.avi.disable.audio  the plug-in drops audio tracks
info --log verbose switches vendor.ruvo.avi.extract.log on by itself, unless --set names it: the
log then has the plug-in's record of each track.

JSON: info prints an array with an object for each file, in the order given; samples, seek and
extract print one object.
A file that fails has a member "error" instead of its contents; extract's has it beside the list of
what was written before.

Exit status:
  0  everything was shown or written
  1  a file cannot be read, is not claimed, fails to parse or has a track that fails; the rest is
     shown or written all the same (a seek that finds the end of the stream is no failure);
     extract: a file exists already or cannot be written
  2  wrong use, or no usable plug-in

Examples:
  avitool info clip.avi
  avitool info *.avi --json | jq '.[].tracks[].format.mime.value'
  avitool samples clip.avi --track 0 --limit 10
  avitool seek clip.avi --at 61.5 --mode closest
  avitool extract clip.avi -o streams --track 0
  avitool info clip.avi --log debug
  avitool samples clip.avi --set vendor.ruvo.avi.verbose.log=1 --log verbose
)";

constexpr const char* kExtractFooter = R"(
Track 0 of clip.avi becomes DIR/clip.0.EXT, its stream, and DIR/clip.0.csv, a line for each sample:
index, time_us, sync (0 or 1), size, and offset, where the sample's bytes begin in the stream's
file, after a header made for it.

  .h264 .h265       start codes; the parameter sets of the file's header come first when the first
                    sample has none
  .m4v .m2v .mjpeg  MPEG-4 part 2, MPEG-1 and MPEG-2, Motion JPEG
  .mp1 .mp2 .mp3    MPEG audio, by its layer
  .ac3 .dts         as they are
  .aac              with ADTS headers, the stream's own or made for it
  .wav              PCM (16 bits a sample, as players get it), A-law, mu-law, MS and IMA ADPCM;
                    sizes in its header stay at 4 GiB - 1 for a longer track
  .bin              everything else: the samples one after the other

A file gets its name when it is whole. What can be read of a track that fails is kept.
)";

// An option whose texts are handed to `take` one by one, as they stand on the line. CLI11's own
// conversions have special texts, like "{}", that are ordinary values here.
template <typename Take>
CLI::Option* addText(CLI::App* app, const std::string& name, const char* valueName, Take take,
                     const std::string& description) {
    const auto takeAll = [take](const CLI::results_t& texts) {
        for (const std::string& text : texts)
            take(unmarked(text));
        return true;
    };
    return app->add_option(name, CLI::callback_t(takeAll), description)
        ->type_name(valueName)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void addCommonOptions(CLI::App* app, Options* options) {
    addText(
        app, "--set", "PROPERTY=VALUE",
        [options](const std::string& text) { options->properties.push_back(parseProperty(text)); },
        "Set a system property for the plug-in;\nmay be repeated");
    addText(
        app, "--log", "LEVEL",
        [options](const std::string& text) { options->logPriority = parseLogLevel(text); },
        "Show the plug-in's log on standard error from\nthis level up: verbose, debug, info, "
        "warn,\nerror or silent (the default)");
    addText(
        app, "--plugin", "PATH", [options](const std::string& text) { options->plugin = text; },
        "Load this plug-in (default: libaviextractor.so\nin ../lib beside the tool's folder)");
}

CLI::App* addCommand(CLI::App* app, const char* name, const char* description, Command command,
                     Options* options) {
    CLI::App* sub = app->add_subcommand(name, description);
    sub->add_flag("--json", options->json, "Print JSON instead of text");
    sub->callback([options, command] { options->command = command; });
    addCommonOptions(sub, options);
    return sub;
}

CLI::Option* addFile(CLI::App* command, const char* description, Options* options) {
    return addText(
               command, "FILE", "",
               [options](const std::string& file) { options->files.push_back(file); }, description)
        ->required();
}

void addTrack(CLI::App* command, Options* options) {
    addText(
        command, "--track", "N",
        [options](const std::string& text) { options->track = parseCount("--track", text); },
        "Only this track, counted from 0");
}

void addInfo(CLI::App* app, Options* options) {
    CLI::App* info = addCommand(app, "info", "Show the formats and sample counts of AVI files",
                                Command::kInfo, options);
    addFile(info, "The AVI files", options)
        ->expected(1, CLI::detail::expected_max_vector_size)
        ->allow_extra_args();
}

void addSamples(CLI::App* app, Options* options) {
    CLI::App* samples = addCommand(app, "samples", "Show the samples of an AVI file, a line each",
                                   Command::kSamples, options);
    addFile(samples, "The AVI file", options);
    addTrack(samples, options);
    addText(
        samples, "--limit", "N",
        [options](const std::string& text) { options->limit = parseCount("--limit", text); },
        "At most so many samples of each track");
}

void addSeek(CLI::App* app, Options* options) {
    CLI::App* seek =
        addCommand(app, "seek", "Show where a seek in an AVI file lands, video and audio",
                   Command::kSeek, options);
    addFile(seek, "The AVI file", options);
    addText(
        seek, "--at", "SECONDS",
        [options](const std::string& text) { options->seekUs = parseSeconds("--at", text); },
        "The time to seek to, 61.5 for example")
        ->required();
    addText(
        seek, "--mode", "MODE",
        [options](const std::string& text) { options->seekMode = parseSeekMode(text); },
        "Where to land: previous (the default), next,\nclosest-sync or closest");
}

void addExtract(CLI::App* app, Options* options) {
    CLI::App* extract =
        addCommand(app, "extract", "Write the tracks of an AVI file as files that players open",
                   Command::kExtract, options);
    addFile(extract, "The AVI file", options);
    addText(
        extract, "-o,--output", "DIR",
        [options](const std::string& text) { options->output = parseFolder("--output", text); },
        "The folder to write into, made when missing")
        ->required();
    addTrack(extract, options);
    extract->add_flag("--force", options->force,
                      "Overwrite files that exist, and write more\nthan 16 times the file's size");
    extract->footer(kExtractFooter);
}

void defineLine(CLI::App* app, Options* options) {
    app->require_subcommand(0, 1);  // a missing one is reported below, an unknown one by its name
    app->set_version_flag("--version", "avitool " AVITOOL_VERSION);
    app->footer(kFooter);
    app->failure_message([](const CLI::App*, const CLI::Error& error) {
        return "avitool: " + printable(withoutMarks(error.what())) + "\nTry 'avitool --help'.\n";
    });
    addCommonOptions(app, options);
    addInfo(app, options);
    addSamples(app, options);
    addSeek(app, options);
    addExtract(app, options);
}

}  // namespace

ParsedLine parseLine(int argc, const char* const* argv) {
    Options options;
    CLI::App app("Shows what the AVI extractor plug-in makes of a file.", "avitool");
    defineLine(&app, &options);
    ParsedLine result;
    try {
        app.parse(markedArguments(argc, argv));
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError("A command (info, samples, seek or extract)");
        }
        result.options = options;
    } catch (const CLI::ParseError& error) {
        std::ostringstream out;
        std::ostringstream err;
        app.exit(error, out, err);
        result.help = out.str();
        result.error = err.str();
    }
    return result;
}

}  // namespace avitool
