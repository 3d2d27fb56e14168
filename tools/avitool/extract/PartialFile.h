// SPDX-License-Identifier: Apache-2.0
// A file that gets its name when it is whole: until then it has a temporary one in the same folder.
// Owns the open file and, until publish(), the temporary name. Invariant: whatever ends the object,
// or the process by an assertion of the plug-in or a signal that asks for its end, nothing stays
// under the temporary name.
// One thread.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace avitool {

/** A file or folder that cannot be written; what() is its path and the reason, in one line. */
class WriteError : public std::runtime_error {
  public:
    WriteError(const std::string& path, const std::string& reason)
        : std::runtime_error(path + ": " + reason) {}
};

class PartialFile {
  public:
    /** Opens a temporary file beside `path`. Throws WriteError. */
    explicit PartialFile(std::filesystem::path path);
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;
    ~PartialFile();

    /** Appends. Throws WriteError. */
    void write(const void* data, size_t size);
    void write(const std::vector<uint8_t>& bytes) { write(bytes.data(), bytes.size()); }
    /** Number of bytes written so far. */
    uint64_t size() const { return mSize; }
    /** Replaces the first bytes, which must have been written; nothing is appended after that.
     * Throws WriteError. */
    void replaceFront(const std::vector<uint8_t>& bytes);
    /** Hands everything to the system, which may only now find it too much. Throws WriteError. */
    void close();
    /** Gives the closed file its name, in the place of any file that has it. Throws WriteError. */
    void publish();
    /** Takes the published file away again. */
    void withdraw();

    const std::filesystem::path& path() const { return mPath; }

    /** Removes all temporary files of the process, which is about to end. Any thread. */
    static void removeAll();
    /** From now on INT, TERM and HUP, unless the process ignores them, remove all temporary files
     * before they end the process. Called once, before other threads start. */
    static void removeAllOnSignals();

  private:
    [[noreturn]] void fail(const char* what) const;

    const std::filesystem::path mPath;
    std::filesystem::path mTemporary;  // empty when there is none
    std::FILE* mFile = nullptr;
    uint64_t mSize = 0;
};

}  // namespace avitool
