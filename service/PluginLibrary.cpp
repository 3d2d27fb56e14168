// SPDX-License-Identifier: Apache-2.0
#include "service/PluginLibrary.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>

namespace android::service {

namespace {

constexpr std::string_view kFileNameEnd = "extractor.so";
constexpr const char* kEntryPoint = "GETEXTRACTORDEF";

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string lastLoaderError() {
    const char* text = dlerror();
    return text == nullptr ? "unknown reason" : text;
}

}  // namespace

PluginLibrary::PluginLibrary(const std::string& path, Unload unload)
    : mPath(path), mLibrary(load(), Unloader{unload}), mDefinition(readDefinition()) {
    check();
}

void* PluginLibrary::load() const {
    if (!endsWith(mPath, kFileNameEnd)) {
        fail(PluginError::Kind::kFileName, "file name does not end in extractor.so");
    }
    // A bare name would be looked for in the loader's search path instead of the current folder.
    const std::string absolute = std::filesystem::absolute(mPath);
    void* library = dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        fail(PluginError::Kind::kLoad, "cannot be loaded: " + lastLoaderError());
    }
    return library;
}

ExtractorDef PluginLibrary::readDefinition() const {
    void* entryPoint = dlsym(mLibrary.get(), kEntryPoint);
    if (entryPoint == nullptr) {
        fail(PluginError::Kind::kSymbol, "does not export " + std::string(kEntryPoint));
    }
    return reinterpret_cast<GetExtractorDef>(entryPoint)();
}

PluginLibrary::~PluginLibrary() = default;

void PluginLibrary::Unloader::operator()(void* library) const {
    if (unload == Unload::kWithObject) dlclose(library);
}

void PluginLibrary::fail(PluginError::Kind kind, const std::string& reason) const {
    throw PluginError(kind, mPath + ": " + reason);
}

void PluginLibrary::check() const {
    const uint32_t version = mDefinition.def_version;
    if (version != EXTRACTORDEF_VERSION_NDK_V1 && version != EXTRACTORDEF_VERSION_NDK_V2) {
        fail(PluginError::Kind::kVersion,
             "unknown definition version " + std::to_string(version) + " (2 and 3 are known)");
    }
    const auto& uuid = mDefinition.extractor_uuid.b;
    if (std::all_of(std::begin(uuid), std::end(uuid), [](uint8_t byte) { return byte == 0; })) {
        fail(PluginError::Kind::kUuid, "the UUID is all zeros");
    }
    const char* name = mDefinition.extractor_name;
    if (name == nullptr || *name == '\0') {
        fail(PluginError::Kind::kName, "the extractor has no name");
    }
    if (sniffer() == nullptr) fail(PluginError::Kind::kSniffer, "the extractor has no sniffer");
    if (version == EXTRACTORDEF_VERSION_NDK_V2 && mDefinition.u.v3.supported_types == nullptr) {
        fail(PluginError::Kind::kTypes, "the definition has no list of supported types");
    }
}

SnifferFunc PluginLibrary::sniffer() const {
    return mDefinition.def_version == EXTRACTORDEF_VERSION_NDK_V2 ? mDefinition.u.v3.sniff
                                                                  : mDefinition.u.v2.sniff;
}

std::vector<std::string> PluginLibrary::supportedTypes() const {
    std::vector<std::string> types;
    if (mDefinition.def_version != EXTRACTORDEF_VERSION_NDK_V2) return types;
    for (const char** type = mDefinition.u.v3.supported_types; *type != nullptr; ++type) {
        types.emplace_back(*type);
    }
    return types;
}

}  // namespace android::service
