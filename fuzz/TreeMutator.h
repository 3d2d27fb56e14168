// SPDX-License-Identifier: Apache-2.0
//
// Changes files by their structure: chunks are dropped, doubled, moved, resized and renamed, their
// sizes and fields made to lie. Deterministic: all chance comes from the seed. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "fuzz/RiffTree.h"

namespace avifuzz {

// Changes up to `maxSize` bytes at will and returns how many they are now; libFuzzer's.
using MutateBytes = size_t (*)(uint8_t* data, size_t size, size_t maxSize);

class TreeMutator {
  public:
    TreeMutator(unsigned seed, MutateBytes function) : mRandom(seed), mMutate(function) {}

    /** Changes a file in one to four ways; mostly its indexes keep pointing to their chunks. */
    void mutate(RiffTree* tree);

    /** Puts a chunk of `other` into the tree, or in place of one of its chunks. */
    void cross(RiffTree* tree, const RiffTree& other);

    /** Changes plain bytes by the given function. */
    void mutateBytes(avitest::Bytes* bytes, size_t maxSize);

    size_t below(size_t count) { return static_cast<size_t>(mRandom()) % count; }

  private:
    // A chunk by its place among its siblings.
    struct Spot {
        std::vector<avitest::Chunk>* siblings = nullptr;
        size_t number = 0;

        avitest::Chunk& chunk() const { return (*siblings)[number]; }
    };

    static void list(std::vector<avitest::Chunk>* chunks, std::vector<Spot>* out);
    Spot choose(RiffTree* tree);
    void change(RiffTree* tree);

    void declareSize(RiffTree* tree);
    void drop(RiffTree* tree);
    void repeat(RiffTree* tree);
    void swap(RiffTree* tree);
    void copyElsewhere(RiffTree* tree);
    void rename(RiffTree* tree);
    void resize(RiffTree* tree);
    void setField(RiffTree* tree);
    void setCode(RiffTree* tree);
    void repeatEntries(RiffTree* tree);
    void mutatePayload(RiffTree* tree);
    uint64_t interesting(uint64_t current);

    std::minstd_rand mRandom;
    MutateBytes mMutate;
};

}  // namespace avifuzz
