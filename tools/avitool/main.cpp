// SPDX-License-Identifier: Apache-2.0
// avitool: shows what the plug-in, and so a device, makes of AVI files.
#include <cutils/properties.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include "service/PluginLibrary.h"
#include "tools/avitool/Commands.h"
#include "tools/avitool/Console.h"
#include "tools/avitool/Options.h"
#include "tools/avitool/PluginLog.h"

namespace avitool {

namespace {

constexpr int kWrongUse = 2;

// Beside the tool, as it is built and installed; for a tool that was copied elsewhere, the plug-in
// it was built with.
std::string defaultPlugin() {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path tool = fs::read_symlink("/proc/self/exe", error);
    const fs::path beside = tool.parent_path().parent_path() / "lib" / "libaviextractor.so";
    return !error && fs::exists(beside, error) ? beside.string() : AVITOOL_BUILT_PLUGIN;
}

// What --set names has the last word: also over the log that `info` asks the plug-in for when all
// of it is to be shown, since the dump of each track belongs to what is known of the file.
void setProperties(const Options& options) {
    if (options.command == Command::kInfo && options.logPriority == ANDROID_LOG_VERBOSE) {
        property_set("vendor.ruvo.avi.extract.log", "1");
    }
    for (const auto& [name, value] : options.properties) {
        property_set(name.c_str(), value.c_str());
    }
}

int runCommand(const Options& options, Console& console) {
    pluginlog::install(options.logPriority);
    setProperties(options);
    using Library = android::service::PluginLibrary;
    // Kept to the end: nothing is gained by unloading it just before.
    const Library plugin(options.plugin ? *options.plugin : defaultPlugin(),
                         Library::Unload::kNever);
    switch (options.command) {
        case Command::kInfo:
            runInfo(options, plugin, console);
            break;
        case Command::kSamples:
            runSamples(options, plugin, console);
            break;
        case Command::kSeek:
            runSeek(options, plugin, console);
            break;
        case Command::kExtract:
            runExtract(options, plugin, console);
            break;
    }
    return console.exitStatus();
}

int run(int argc, char** argv, Console& console) {
    const ParsedLine line = parseLine(argc, argv);
    if (line.options) return runCommand(*line.options, console);
    if (!line.error.empty()) {
        std::fputs(line.error.c_str(), stderr);
        return kWrongUse;
    }
    console.write(line.help);
    console.flush();
    return 0;
}

int runGuarded(int argc, char** argv) {
    Console console;
    try {
        return run(argc, argv, console);
    } catch (const OutputError& error) {
        // A reader that has seen enough (`| head`) is no problem.
        if (error.code().value() != EPIPE) std::fprintf(stderr, "avitool: %s\n", error.what());
        return error.code().value() == EPIPE ? console.exitStatus() : 1;
    } catch (const android::service::PluginError& error) {
        console.complain(error.what());
        return kWrongUse;
    }
}

}  // namespace

}  // namespace avitool

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a reader that has gone shows as EPIPE
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow further shows as EFBIG
    return avitool::runGuarded(argc, argv);
}
