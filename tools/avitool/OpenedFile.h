// SPDX-License-Identifier: Apache-2.0
// A file opened through the plug-in and parsed. Owns the source and the extractor; the plug-in is
// borrowed and must outlive it. Invariant: an object exists only for a file that the plug-in
// claims and whose parse succeeded. One thread.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "service/Extractor.h"
#include "service/FileSource.h"
#include "service/PluginLibrary.h"
#include "tools/avitool/CountingSource.h"

namespace avitool {

/** A file of which nothing can be shown; what() is the reason, without the file's name. */
class FileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class OpenedFile {
  public:
    /** Throws FileError when the file cannot be read, is not claimed or cannot be parsed. */
    OpenedFile(const android::service::PluginLibrary& plugin, const std::string& path);

    const android::service::Extractor& extractor() const { return *mExtractor; }
    /** The file's own format. */
    const android::service::FormatView& format() const { return mFormat; }
    /** Its bytes; 0 when the system does not know. */
    uint64_t size() const;
    /** Number of reads of the file so far. */
    uint64_t readCount() const { return mCounter->readCount(); }

  private:
    std::unique_ptr<android::service::FileSource> mSource;
    std::unique_ptr<CountingSource> mCounter;  // what the extractor reads through
    std::unique_ptr<android::service::Extractor> mExtractor;
    android::service::MediaFormat mFormat;
};

}  // namespace avitool
