// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/Options.h"

#include <cutils/properties.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <sstream>
#include <string_view>
#include <utility>

#include "tools/avitool/Text.h"

namespace avitool {

namespace {

constexpr const char* kProperties[] = {"vendor.ruvo.avi.extract.log", "vendor.ruvo.avi.verbose.log",
                                       "vendor.ruvo.avi.disable.audio"};

struct LogLevel {
    const char* name;
    int priority;
};
constexpr LogLevel kLogLevels[] = {
    {"verbose", ANDROID_LOG_VERBOSE}, {"debug", ANDROID_LOG_DEBUG}, {"info", ANDROID_LOG_INFO},
    {"warn", ANDROID_LOG_WARN},       {"error", ANDROID_LOG_ERROR}, {"silent", ANDROID_LOG_SILENT}};

struct ModeName {
    const char* name;
    SeekMode mode;
};
constexpr ModeName kModeNames[] = {{"previous", SeekMode::kPreviousSync},
                                   {"next", SeekMode::kNextSync},
                                   {"closest-sync", SeekMode::kClosestSync},
                                   {"closest", SeekMode::kClosest}};

constexpr const char* kFooter = R"(
Properties for --set, each off with 0 and on with any other number:
  vendor.ruvo.avi.extract.log    the plug-in logs what it parses   (see it with --log verbose)
  vendor.ruvo.avi.verbose.log    the plug-in logs every chunk      (see it with --log verbose)
  vendor.ruvo.avi.disable.audio  the plug-in drops audio tracks

JSON: info prints an array with an object for each file, in the order given; samples and seek print
one object.
A file that fails has a member "error" instead of its contents.

Exit status:
  0  everything was shown
  1  a file cannot be read, is not claimed, fails to parse or has a track that fails; the rest is
     shown all the same (a seek that finds the end of the stream is no failure)
  2  wrong use, or no usable plug-in

Examples:
  avitool info clip.avi
  avitool info *.avi --json | jq '.[].tracks[].format.mime.value'
  avitool samples clip.avi --track 0 --limit 10
  avitool seek clip.avi --at 61.5 --mode closest
  avitool info clip.avi --log debug
  avitool samples clip.avi --set vendor.ruvo.avi.verbose.log=1 --log verbose
)";

void addProperty(const std::string& text, Options* options) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) {
        throw CLI::ValidationError("--set", "'" + text + "' is not PROPERTY=VALUE");
    }
    const std::string name = text.substr(0, equals);
    const std::string value = text.substr(equals + 1);
    if (std::find(std::begin(kProperties), std::end(kProperties), name) == std::end(kProperties)) {
        throw CLI::ValidationError("--set", "'" + name + "' is no property of the plug-in");
    }
    if (value.size() >= PROPERTY_VALUE_MAX) {
        throw CLI::ValidationError("--set", "the value of " + name + " is too long");
    }
    options->properties.emplace_back(name, value);
}

void setLogLevel(const std::string& name, Options* options) {
    for (const LogLevel& level : kLogLevels) {
        if (name == level.name) {
            options->logPriority = level.priority;
            return;
        }
    }
    throw CLI::ValidationError("--log", "'" + name + "' is no log level");
}

void setSeekMode(const std::string& name, Options* options) {
    for (const ModeName& entry : kModeNames) {
        if (name == entry.name) {
            options->seekMode = entry.mode;
            return;
        }
    }
    throw CLI::ValidationError("--mode", "'" + name + "' is no seek mode");
}

// CLI11 splits arguments in brackets at their commas, ends a subcommand at "++", and at "--" when
// it has a file already. All may belong to names of files, so such arguments travel through it with
// a mark in front.
constexpr char kMark = '\1';

// The arguments for CLI11, which wants the last one first.
std::vector<std::string> markedArguments(int argc, const char* const* argv) {
    constexpr std::string_view kSpecial = "[+\1";
    std::vector<std::string> arguments;
    bool onlyNames = false;  // after "--"
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--" && !onlyNames) {
            onlyNames = true;
            continue;
        }
        const bool special = onlyNames || (!argument.empty() &&
                                           kSpecial.find(argument[0]) != std::string_view::npos);
        arguments.push_back(special ? kMark + argument : argument);
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

std::string unmarked(const std::string& argument) {
    return !argument.empty() && argument[0] == kMark ? argument.substr(1) : argument;
}

std::string withoutMarks(std::string message) {
    message.erase(std::remove(message.begin(), message.end(), kMark), message.end());
    return message;
}

// Not CLI11's conversion, which takes "-1" for the largest number and an overflow as well.
uint64_t parseCount(const std::string& option, const std::string& text) {
    uint64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) {
        throw CLI::ValidationError(option, "'" + text + "' is no number");
    }
    return value;
}

// Seconds as decimal digits with or without a fraction, of which six digits count, as microseconds.
int64_t parseSeconds(const std::string& option, const std::string& text) {
    constexpr size_t kFractionDigits = 6;
    const size_t point = std::min(text.find('.'), text.size());
    std::string fraction = text.substr(std::min(point + 1, text.size()));
    const std::string digits = text.substr(0, point) + fraction;
    const bool isNumber = !digits.empty() && std::all_of(digits.begin(), digits.end(), [](char c) {
        return c >= '0' && c <= '9';
    });
    fraction.resize(kFractionDigits, '0');
    const std::string micros = text.substr(0, point) + fraction;
    int64_t value = 0;
    const auto result = std::from_chars(micros.data(), micros.data() + micros.size(), value);
    if (!isNumber || result.ec != std::errc()) {
        throw CLI::ValidationError(option, "'" + text + "' is no time in seconds");
    }
    return value;
}

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
        [options](const std::string& text) { addProperty(text, options); },
        "Set a system property for the plug-in;\nmay be repeated");
    addText(
        app, "--log", "LEVEL", [options](const std::string& text) { setLogLevel(text, options); },
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

void addInfo(CLI::App* app, Options* options) {
    CLI::App* info = addCommand(app, "info", "Show the formats and sample counts of AVI files",
                                Command::kInfo, options);
    addText(
        info, "FILE", "", [options](const std::string& file) { options->files.push_back(file); },
        "The AVI files")
        ->required()
        ->expected(1, CLI::detail::expected_max_vector_size)
        ->allow_extra_args();
}

void addSamples(CLI::App* app, Options* options) {
    CLI::App* samples = addCommand(app, "samples", "Show the samples of an AVI file, a line each",
                                   Command::kSamples, options);
    addText(
        samples, "FILE", "", [options](const std::string& file) { options->files.push_back(file); },
        "The AVI file")
        ->required();
    addText(
        samples, "--track", "N",
        [options](const std::string& text) { options->track = parseCount("--track", text); },
        "Only this track, counted from 0");
    addText(
        samples, "--limit", "N",
        [options](const std::string& text) { options->limit = parseCount("--limit", text); },
        "At most so many samples of each track");
}

void addSeek(CLI::App* app, Options* options) {
    CLI::App* seek =
        addCommand(app, "seek", "Show where a seek in an AVI file lands, video and audio",
                   Command::kSeek, options);
    addText(
        seek, "FILE", "", [options](const std::string& file) { options->files.push_back(file); },
        "The AVI file")
        ->required();
    addText(
        seek, "--at", "SECONDS",
        [options](const std::string& text) { options->seekUs = parseSeconds("--at", text); },
        "The time to seek to, 61.5 for example")
        ->required();
    addText(
        seek, "--mode", "MODE", [options](const std::string& text) { setSeekMode(text, options); },
        "Where to land: previous (the default), next,\nclosest-sync or closest");
}

void defineLine(CLI::App* app, Options* options) {
    app->require_subcommand(0, 1);  // a missing one is told below, an unknown one as it stands
    app->set_version_flag("--version", "avitool " AVITOOL_VERSION);
    app->footer(kFooter);
    app->failure_message([](const CLI::App*, const CLI::Error& error) {
        return "avitool: " + printable(withoutMarks(error.what())) + "\nTry 'avitool --help'.\n";
    });
    addCommonOptions(app, options);
    addInfo(app, options);
    addSamples(app, options);
    addSeek(app, options);
}

}  // namespace

const char* modeName(SeekMode mode) {
    for (const ModeName& entry : kModeNames) {
        if (mode == entry.mode) return entry.name;
    }
    return "";
}

ParsedLine parseLine(int argc, const char* const* argv) {
    Options options;
    CLI::App app("Shows what the AVI extractor plug-in makes of a file.", "avitool");
    defineLine(&app, &options);
    ParsedLine result;
    try {
        app.parse(markedArguments(argc, argv));
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError("A command (info, samples or seek)");
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
