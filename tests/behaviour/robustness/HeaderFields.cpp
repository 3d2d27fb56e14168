// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/robustness/HeaderFields.h"

#include <map>
#include <utility>

namespace avitest {

namespace {

uint32_t u32At(const Bytes& file, size_t offset) {
    return uint32_t{file.at(offset)} | uint32_t{file.at(offset + 1)} << 8 |
           uint32_t{file.at(offset + 2)} << 16 | uint32_t{file.at(offset + 3)} << 24;
}

std::vector<size_t> repeated(size_t width, size_t count) {
    return std::vector<size_t>(count, width);
}

// Widths of the fields of a chunk's payload, in order; empty for chunks without known fields.
std::vector<size_t> fieldWidths(const std::string& id, size_t size, bool video) {
    if (id == "avih" || id == "vprp" || id == "idx1") return repeated(4, size / 4);
    if (id == "strh") return {4, 4, 4, 2, 2, 4, 4, 4, 4, 4, 4, 4, 4, 2, 2, 2, 2};
    if (id != "strf") return {};
    if (video) return {4, 4, 4, 2, 2, 4, 4, 4, 4, 4, 4};
    return size >= 18 ? std::vector<size_t>{2, 2, 4, 4, 2, 2, 2}
                      : std::vector<size_t>{2, 2, 4, 4, 2, 2};
}

class FieldFinder {
  public:
    explicit FieldFinder(const Bytes& file) : mFile(file) {}

    std::vector<HeaderField> find() {
        walk(0, mFile.size());
        return std::move(mFields);
    }

  private:
    void walk(size_t begin, size_t end) {
        for (size_t at = begin; at + 8 <= end;) {
            const std::string id = ChunkId(u32At(mFile, at)).text();
            const size_t size = u32At(mFile, at + 4);
            const std::string name = id + "[" + std::to_string(mSeen[id]++) + "]";
            mFields.push_back({name + " id", at, 4});
            mFields.push_back({name + " size", at + 4, 4});
            if (id == "LIST" || id == "RIFF") {
                mFields.push_back({name + " type", at + 8, 4});
                walk(at + 12, at + 8 + size);
            } else {
                addPayload(id, name, at + 8, size);
            }
            at += 8 + size + size % 2;
        }
    }

    void addPayload(const std::string& id, const std::string& name, size_t begin, size_t size) {
        if (id == "strh") mVideo = ChunkId(u32At(mFile, begin)) == ChunkId("vids");
        size_t at = 0;
        for (const size_t width : fieldWidths(id, size, mVideo)) {
            mFields.push_back({name + " + " + std::to_string(at), begin + at, width});
            at += width;
        }
    }

    const Bytes& mFile;
    std::vector<HeaderField> mFields;
    std::map<std::string, size_t> mSeen;
    bool mVideo = false;  // the stream list being walked
};

}  // namespace

std::vector<HeaderField> headerFields(const Bytes& file) {
    return FieldFinder(file).find();
}

void overwrite(Bytes* file, const HeaderField& field, uint32_t value) {
    for (size_t i = 0; i < field.width; ++i)
        file->at(field.offset + i) = static_cast<uint8_t>(value >> (8 * i));
}

}  // namespace avitest
