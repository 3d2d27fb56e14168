// SPDX-License-Identifier: Apache-2.0
// An extractor plug-in's shared library, loaded and checked the way the extractor service does it.
// Owns the library's handle. Invariant: an object exists only for a library that is loaded and
// whose definition is sound. Threads: immutable once constructed; any number of threads may use it.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <media/MediaExtractorPluginApi.h>

namespace android::service {

/** What is wrong with a plug-in. what() says it in one line, with the library's path. */
class PluginError : public std::runtime_error {
  public:
    enum class Kind {
        kFileName,    // does not end in "extractor.so"
        kLoad,        // cannot be loaded: missing, no library, unresolved symbols
        kSymbol,      // does not export GETEXTRACTORDEF
        kVersion,     // a definition version that the service does not know
        kUuid,        // the UUID is all zeros
        kName,        // no name
        kSniffer,     // no sniffer
        kTypes,       // a version 3 definition without a list of types
        kConfidence,  // claimed a source but left the confidence unwritten
    };

    PluginError(Kind kind, const std::string& text) : std::runtime_error(text), mKind(kind) {}
    Kind kind() const { return mKind; }

  private:
    Kind mKind;
};

class PluginLibrary {
  public:
    /** When the library is unloaded: keeping it lets a leak report name the plug-in's functions. */
    enum class Unload { kWithObject, kNever };

    /** Loads the library at `path` and checks it. Throws PluginError when the service would not
     * take it. */
    explicit PluginLibrary(const std::string& path, Unload unload = Unload::kWithObject);
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;
    /** Unloads the library, unless it is to be kept; no extractor or track of it may be left. */
    ~PluginLibrary();

    /** The definition as the plug-in exports it; its texts live while the library is loaded. */
    const ExtractorDef& definition() const { return mDefinition; }
    /** The sniffer, from whichever member of the definition its version says. */
    SnifferFunc sniffer() const;
    /** The file extensions that the plug-in lists; empty for a version 2 definition. */
    std::vector<std::string> supportedTypes() const;
    /** The path it was loaded from, as given. */
    const std::string& path() const { return mPath; }

  private:
    struct Unloader {
        Unload unload = Unload::kWithObject;
        void operator()(void* library) const;
    };

    void* load() const;
    ExtractorDef readDefinition() const;
    void check() const;
    [[noreturn]] void fail(PluginError::Kind kind, const std::string& reason) const;

    const std::string mPath;
    const std::unique_ptr<void, Unloader> mLibrary;
    const ExtractorDef mDefinition;  // points into the library
};

}  // namespace android::service
