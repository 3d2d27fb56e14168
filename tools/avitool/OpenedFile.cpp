// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/OpenedFile.h"

#include <fmt/format.h>

#include <utility>
#include <vector>

#include "tools/avitool/PluginLog.h"
#include "tools/avitool/Text.h"

namespace avitool {

namespace service = android::service;

namespace {

std::unique_ptr<service::FileSource> openSource(const std::string& path) {
    try {
        return std::make_unique<service::FileSource>(path);
    } catch (const service::SourceError& error) {
        // The source names itself, as whoever complains about the file does.
        const std::string text = error.what();
        const std::string prefix = path + ": ";
        throw FileError(text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text);
    }
}

std::unique_ptr<service::Extractor> openExtractor(const service::PluginLibrary& plugin,
                                                  service::DataSource& source) {
    const service::SniffResult sniffed = service::Extractor::sniff(plugin, source);
    if (!sniffed.claimed) {
        throw FileError(fmt::format("not claimed as AVI (confidence {})", sniffed.confidence));
    }
    auto extractor = service::Extractor::open(plugin, source);
    if (extractor == nullptr) throw FileError("claimed as AVI, but the plug-in gives no extractor");
    return extractor;
}

// The plug-in's own words for a failed parse: from where it was found to what came of it. The last
// line is that of the query's failure, whose status is known.
std::string innerReason(std::vector<std::string> errors) {
    constexpr size_t kMaxLines = 3;
    if (errors.size() > 1) errors.pop_back();
    const size_t first = errors.size() > kMaxLines ? errors.size() - kMaxLines : 0;
    std::string reason;
    for (size_t i = first; i < errors.size(); ++i) {
        reason += (reason.empty() ? " [" : "; ") + errors[i];
    }
    return reason.empty() ? reason : reason + "]";
}

}  // namespace

OpenedFile::OpenedFile(const service::PluginLibrary& plugin, const std::string& path) {
    pluginlog::beginFile(path);
    mSource = openSource(path);
    mCounter = std::make_unique<CountingSource>(*mSource);
    mExtractor = openExtractor(plugin, *mCounter);
    service::FormatResult result = mExtractor->metaData();  // the first query parses the file
    if (result.status != AMEDIA_OK) {
        throw FileError(fmt::format("cannot be parsed: {}{}", statusText(result.status),
                                    innerReason(pluginlog::errors())));
    }
    mFormat = std::move(result.format);
}

uint64_t OpenedFile::size() const {
    off64_t size = 0;
    return mSource->getSize(&size) == android::OK && size > 0 ? static_cast<uint64_t>(size) : 0;
}

}  // namespace avitool
