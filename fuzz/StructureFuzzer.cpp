// SPDX-License-Identifier: Apache-2.0
//
// The whole plug-in over files that are changed by their structure, chunk by chunk. An input is the
// same as that of the extractor's fuzzer, which does the rest.
#include <algorithm>

#include "fuzz/Entry.h"
#include "fuzz/Orders.h"
#include "fuzz/TreeMutator.h"

namespace avifuzz {

namespace {

// The orders with the byte that counts them.
avitest::Bytes ordersOf(const Input& input, const uint8_t* data, size_t size) {
    return {data + input.fileSize, data + size};
}

size_t join(const RiffTree& tree, const avitest::Bytes& orders, uint8_t* out, size_t maxSize) {
    if (orders.size() > maxSize) return 0;
    const size_t room = maxSize - orders.size();
    avitest::Bytes file = tree.toBytes(room);
    file.resize(std::min(file.size(), room));
    std::copy(file.begin(), file.end(), out);
    std::copy(orders.begin(), orders.end(), out + file.size());
    return file.size() + orders.size();
}

// Anything but a wrong count of orders.
void changeOrders(TreeMutator* mutator, avitest::Bytes* orders) {
    constexpr size_t kMostOrders = 120;
    if (!orders->empty()) orders->pop_back();
    mutator->mutateBytes(orders, kMostOrders);
    orders->push_back(static_cast<uint8_t>(orders->size()));
}

}  // namespace

}  // namespace avifuzz

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned seed) {
    using namespace avifuzz;
    TreeMutator mutator(seed, LLVMFuzzerMutate);
    const Input input(data, size);
    RiffTree tree = parseTree(input.file, input.fileSize);
    avitest::Bytes orders = ordersOf(input, data, size);
    if (mutator.below(4) == 0 || tree.chunks.empty()) {
        changeOrders(&mutator, &orders);
    } else {
        mutator.mutate(&tree);
    }
    if (tree.chunks.empty()) return LLVMFuzzerMutate(data, size, maxSize);
    return join(tree, orders, data, maxSize);
}

size_t LLVMFuzzerCustomCrossOver(const uint8_t* first, size_t firstSize, const uint8_t* second,
                                 size_t secondSize, uint8_t* out, size_t maxSize, unsigned seed) {
    using namespace avifuzz;
    TreeMutator mutator(seed, LLVMFuzzerMutate);
    const Input input(first, firstSize);
    const Input other(second, secondSize);
    RiffTree tree = parseTree(input.file, input.fileSize);
    mutator.cross(&tree, parseTree(other.file, other.fileSize));
    return join(tree, ordersOf(input, first, firstSize), out, maxSize);
}
