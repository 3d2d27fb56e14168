// SPDX-License-Identifier: Apache-2.0
// How `avitool info` shows its reports. The console is borrowed. One thread.
#pragma once

#include <memory>
#include <string>

#include "tools/avitool/Console.h"
#include "tools/avitool/Report.h"

namespace avitool {

class InfoPrinter {
  public:
    InfoPrinter() = default;
    InfoPrinter(const InfoPrinter&) = delete;
    InfoPrinter& operator=(const InfoPrinter&) = delete;
    virtual ~InfoPrinter() = default;

    /** What is to be shown of a file, which may have failed, for add(). */
    virtual std::string shown(const FileReport& report) const = 0;
    /** Adds what shown() gave for the next file, maybe in another process. Throws OutputError. */
    virtual void add(const std::string& shown) = 0;
    /** Prints what is still to be printed after the last file. Throws OutputError. */
    virtual void finish() = 0;
};

/** For people: a table a track. A file that failed has nothing to show. */
std::unique_ptr<InfoPrinter> makeTextInfo(Console& console);
/** One array with an object for each file, in the order they were added. */
std::unique_ptr<InfoPrinter> makeJsonInfo(Console& console);

}  // namespace avitool
