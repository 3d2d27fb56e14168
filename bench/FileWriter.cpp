// SPDX-License-Identifier: Apache-2.0
#include "bench/FileWriter.h"

#include <unistd.h>

#include <stdexcept>

namespace avibench {

FileWriter::FileWriter(const std::string& path) : mPath(path) {
    if (path.empty()) return;
    mFile.reset(std::fopen(path.c_str(), "wb"));
    if (mFile == nullptr) throw std::runtime_error("cannot write " + path);
}

void FileWriter::put(const avitest::Bytes& bytes) {
    if (mFile != nullptr) {
        if (mBehindHole) seek(mPosition);
        std::fwrite(bytes.data(), 1, bytes.size(), mFile.get());
    }
    mBehindHole = false;
    mPosition += bytes.size();
}

void FileWriter::skip(uint64_t bytes) {
    mPosition += bytes;
    mBehindHole = mBehindHole || bytes > 0;
}

void FileWriter::putAt(uint64_t offset, const avitest::Bytes& bytes) {
    if (mFile == nullptr) return;
    seek(offset);
    std::fwrite(bytes.data(), 1, bytes.size(), mFile.get());
    mBehindHole = true;
}

void FileWriter::close() {
    if (mFile == nullptr) return;
    const bool written = std::fflush(mFile.get()) == 0 && std::ferror(mFile.get()) == 0 &&
                         ftruncate(fileno(mFile.get()), static_cast<off_t>(mPosition)) == 0;
    mFile.reset();
    if (!written) throw std::runtime_error("cannot write " + mPath);
}

void FileWriter::seek(uint64_t offset) {
    if (fseeko(mFile.get(), static_cast<off_t>(offset), SEEK_SET) != 0) {
        throw std::runtime_error("cannot write " + mPath);
    }
}

}  // namespace avibench
