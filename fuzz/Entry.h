// SPDX-License-Identifier: Apache-2.0
//
// The functions by which libFuzzer, and the replay of a corpus, call a target.
#pragma once

#include <cstddef>
#include <cstdint>

#define AVI_FUZZ_ENTRY __attribute__((visibility("default")))

extern "C" {

AVI_FUZZ_ENTRY int LLVMFuzzerInitialize(int* argc, char*** argv);
AVI_FUZZ_ENTRY int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Of targets that know how to change their inputs. Both write at most `maxSize` bytes and return
// how many.
AVI_FUZZ_ENTRY size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize,
                                              unsigned seed);
AVI_FUZZ_ENTRY size_t LLVMFuzzerCustomCrossOver(const uint8_t* first, size_t firstSize,
                                                const uint8_t* second, size_t secondSize,
                                                uint8_t* out, size_t maxSize, unsigned seed);

// libFuzzer's own mutation of plain bytes.
size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);
}
