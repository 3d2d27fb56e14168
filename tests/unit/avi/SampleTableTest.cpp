// SPDX-License-Identifier: Apache-2.0
//
// The walks over key flags, which look at several flags at once.

#include "SampleTable.h"

#include <gtest/gtest.h>

#include <vector>

namespace android {
namespace {

SampleTable tableOf(const std::vector<bool>& flags) {
    SampleTable table;
    for (const bool flag : flags) {
        table.add({0, 1, flag ? uint8_t{1} : uint8_t{0}}, SampleTable::Sizes::kOfChunks, true);
    }
    return table;
}

// What the walks mean, an entry at a time.
size_t nextSlowly(const SampleTable& table, size_t from) {
    for (size_t i = from; i < table.size(); ++i)
        if (table.syncFlag(i) != 0) return i;
    return table.size();
}

size_t previousSlowly(const SampleTable& table, size_t from) {
    for (size_t i = from + 1; i > 0; --i)
        if (table.syncFlag(i - 1) != 0) return i - 1;
    return table.size();
}

void expectWalksAgree(const SampleTable& table) {
    for (size_t from = 0; from < table.size(); ++from) {
        ASSERT_EQ(table.nextSync(from), nextSlowly(table, from)) << from << "/" << table.size();
        ASSERT_EQ(table.previousSync(from), previousSlowly(table, from)) << from;
    }
    EXPECT_EQ(table.nextSync(table.size()), table.size());
}

TEST(SampleTableSyncs, OneFlagIsFoundFromEverywhere) {
    for (size_t size = 1; size < 50; ++size) {
        for (size_t key = 0; key < size; ++key) {
            std::vector<bool> flags(size);
            flags[key] = true;
            expectWalksAgree(tableOf(flags));
        }
    }
}

// Under AddressSanitizer this shows that no walk looks beyond the memory of the flags, which ends
// right behind the last one at some of these sizes.
TEST(SampleTableSyncs, FullTableEndsTheWalks) {
    for (size_t size = 320; size < 330; ++size)
        expectWalksAgree(tableOf(std::vector<bool>(size)));
}

TEST(SampleTableSyncs, SeveralFlagsAreToldApart) {
    for (unsigned pattern = 0; pattern < 4096; ++pattern) {
        std::vector<bool> flags(40);
        for (size_t bit = 0; bit < 12; ++bit)
            flags[bit * 3 + 2] = (pattern >> bit & 1) != 0;
        expectWalksAgree(tableOf(flags));
    }
}

TEST(SampleTableSyncs, CorrectedFlagsCount) {
    SampleTable table = tableOf(std::vector<bool>(40, true));
    for (size_t i = 0; i < 40; ++i)
        table.correctSyncFlag(i, i == 20);
    expectWalksAgree(table);
    EXPECT_EQ(table.nextSync(0), 20u);
    EXPECT_EQ(table.previousSync(39), 20u);
}

TEST(SampleTableSyncs, TableWithoutFlagsHasNone) {
    SampleTable table;
    for (int i = 0; i < 20; ++i)
        table.add({0, 1, 0}, SampleTable::Sizes::kOfChunks, false);
    expectWalksAgree(table);
    EXPECT_EQ(table.previousSync(19), 20u);
}

}  // namespace
}  // namespace android
