// SPDX-License-Identifier: Apache-2.0

#include "tests/support/Chunk.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace avitest {

namespace {

constexpr size_t kHeaderSize = 8;

// Position of the n-th child called `name`; the number of children when there is none.
size_t findChild(const std::vector<Chunk>& children, ChunkId name, size_t n) {
    for (size_t i = 0; i < children.size(); ++i) {
        if (children[i].name() != name) continue;
        if (n == 0) return i;
        --n;
    }
    return children.size();
}

}  // namespace

Chunk Chunk::list(ChunkId type, std::vector<Chunk> content, ChunkId listId) {
    Chunk result(listId);
    result.listType = type;
    result.children = std::move(content);
    return result;
}

Chunk& Chunk::declare(uint32_t size) {
    declaredSize = size;
    return *this;
}

Chunk& Chunk::keep(size_t bytes) {
    keptBytes = bytes;
    return *this;
}

Chunk& Chunk::unpadded() {
    padded = false;
    return *this;
}

Chunk& Chunk::marked(std::string name) {
    mark = std::move(name);
    return *this;
}

Chunk& Chunk::add(Chunk child) {
    children.push_back(std::move(child));
    return *this;
}

Chunk& Chunk::insert(size_t index, Chunk child) {
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(index), std::move(child));
    return *this;
}

Chunk& Chunk::child(ChunkId name, size_t n) {
    const size_t at = findChild(children, name, n);
    if (at == children.size()) {
        std::fprintf(stderr, "Chunk '%s' has no child '%s' number %zu\n",
                     this->name().text().c_str(), name.text().c_str(), n);
        std::abort();
    }
    return children[at];
}

Chunk& Chunk::arrange(const std::vector<ChunkId>& names) {
    const auto rank = [&names](const Chunk& chunk) {
        return std::find(names.begin(), names.end(), chunk.name()) - names.begin();
    };
    std::stable_sort(children.begin(), children.end(),
                     [&rank](const Chunk& a, const Chunk& b) { return rank(a) < rank(b); });
    return *this;
}

void Chunk::write(ByteWriter& out, Layout* layout) const {
    const size_t start = out.size();
    out.fourcc(id).u32(0);  // the size is known once the children are written
    if (listType) out.fourcc(*listType);
    if (!listType) out.bytes(payload);
    for (const Chunk& item : children)
        item.write(out, layout);

    const size_t size = out.size() - start - kHeaderSize;
    out.patchU32(start + 4, declaredSize.value_or(static_cast<uint32_t>(size)));
    if (padded && size % 2 == 1) out.u8(padByte);
    if (keptBytes) out.cut(start + *keptBytes);
    if (layout != nullptr && !mark.empty()) (*layout)[mark] = {start, start + kHeaderSize, size};
}

Bytes Chunk::toBytes() const {
    ByteWriter out;
    write(out);
    return out.take();
}

}  // namespace avitest
