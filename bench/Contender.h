// SPDX-License-Identifier: Apache-2.0
//
// Whoever does the work that is measured: opens a file, reads its samples in the order of the file,
// goes to a place and reads the frame there. Used by one thread. What fails throws
// std::runtime_error.
#pragma once

#include <cstdint>
#include <string>

namespace avibench {

class Contender {
  public:
    virtual ~Contender() = default;

    virtual void open(const std::string& path) = 0;
    // Gets ready to read what open() opened; not measured.
    virtual void start() {}
    // Reads up to `count` samples: how many there were.
    virtual uint64_t read(uint64_t count) = 0;
    // Goes to the key frame at or before that time of the video, and reads it.
    virtual void seek(int64_t timeUs) = 0;
    virtual void close() = 0;

    // Of its data source since open(); 0 where they cannot be counted.
    virtual uint64_t calls() const = 0;
};

}  // namespace avibench
