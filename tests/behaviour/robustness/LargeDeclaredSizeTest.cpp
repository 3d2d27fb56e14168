// SPDX-License-Identifier: Apache-2.0
//
// Small files that claim large things: no memory is asked for that the file could not fill.

#include "service/MemorySource.h"
#include "tests/behaviour/robustness/AllocationWatch.h"
#include "tests/behaviour/robustness/Endurance.h"
#include "tests/behaviour/robustness/HeaderFields.h"

namespace avitest {
namespace {

// What the reader, the service and the C library take for themselves, whatever the file.
constexpr size_t kAnyFileBytes = 256 * 1024;

constexpr uint32_t kLargeSizes[] = {1u << 20,    1u << 24,   60'000'000, 0x0FFFFFFE,
                                    0x0FFFFFFFu, 0x10000000, 0x7FFFFFFE, 0x7FFFFFFF,
                                    0x80000000,  0xFFFFFFF0, 0xFFFFFFFE, 0xFFFFFFFF};

class LargeDeclaredSize : public QuietTest {
  protected:
    // Puts each large value into each field whose name begins with `prefix` and has `part` in it.
    void expectLittleMemory(const std::string& prefix, const std::string& part,
                            size_t allowed = kAnyFileBytes) {
        const SmallFile file = plainFile();
        size_t fields = 0;
        for (const HeaderField& field : headerFields(file.bytes)) {
            if (field.name.rfind(prefix, 0) != 0) continue;
            if (field.name.find(part) == std::string::npos) continue;
            ++fields;
            for (const uint32_t value : kLargeSizes) {
                Bytes lying = file.bytes;
                overwrite(&lying, field, value);
                const AllocationWatch watch;
                EXPECT_TRUE(endures(lying)) << field.name << " = " << value;
                EXPECT_GE(allowed, watch.peak()) << field.name << " = " << value;
            }
        }
        EXPECT_LT(0u, fields) << prefix << part;
    }
};

TEST_F(LargeDeclaredSize, OfTheMainHeaderTakesNoMemory) {
    expectLittleMemory("avih", "size");
}

TEST_F(LargeDeclaredSize, OfAStreamHeaderTakesNoMemory) {
    expectLittleMemory("strh", "size");
}

TEST_F(LargeDeclaredSize, OfAStreamFormatTakesNoMemory) {
    expectLittleMemory("strf", "size");
}

TEST_F(LargeDeclaredSize, OfAStreamNameTakesNoMemory) {
    expectLittleMemory("strn", "size");
}

TEST_F(LargeDeclaredSize, OfVideoPropertiesTakesNoMemory) {
    expectLittleMemory("vprp", "size");
}

TEST_F(LargeDeclaredSize, OfCodecPrivateDataTakesNoMemory) {
    expectLittleMemory("strd", "size");
}

TEST_F(LargeDeclaredSize, OfAListTakesNoMemory) {
    expectLittleMemory("LIST", "size");
    expectLittleMemory("RIFF", "size");
}

TEST_F(LargeDeclaredSize, OfTheIndexTakesNoMemory) {
    expectLittleMemory("idx1", "size");
}

// The largest sample decides the size of the two buffers that a track starts with, up to 64 MiB;
// the player's group allocates them, and nothing is written that the file does not have.
TEST_F(LargeDeclaredSize, OfChunksInTheIndexTakesTwoBuffersAtMost) {
    constexpr size_t kLargestBuffer = 64 * 1024 * 1024 + 4;
    expectLittleMemory("idx1", "+", 2 * kLargestBuffer + kAnyFileBytes);
}

TEST_F(LargeDeclaredSize, InAStreamHeaderTakesNoMemory) {
    expectLittleMemory("strh", "+");
}

TEST_F(LargeDeclaredSize, InAStreamFormatTakesNoMemory) {
    expectLittleMemory("strf", "+");
}

TEST_F(LargeDeclaredSize, InVideoPropertiesTakesNoMemory) {
    expectLittleMemory("vprp", "+");
}

// The log of a chunk's bytes needs three times as many.
TEST_F(LargeDeclaredSize, WithAllLogsOnTakesNoMemory) {
    const ScopedProperty extractLog(kExtractLogProperty, "1");
    const ScopedProperty verboseLog(kVerboseLogProperty, "1");
    for (const char* chunk : {"avih", "strh", "strf", "strn", "vprp", "strd"})
        expectLittleMemory(chunk, "size");
}

}  // namespace
}  // namespace avitest
