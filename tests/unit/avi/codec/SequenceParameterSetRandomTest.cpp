// SPDX-License-Identifier: Apache-2.0
//
// Random parameter sets through the check and through the parser that it stands in front of: what
// the check accepts must not end the process there, and has a size. The sets are the same in every
// run; --gtest_shuffle with another --gtest_random_seed, or with --gtest_repeat, makes others.

#include "avi/codec/SequenceParameterSet.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <log/log.h>
#include <media/stagefright/foundation/avc_utils.h>

#include "tests/unit/avi/ExactBytes.h"
#include "tests/unit/avi/codec/UnitBytes.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kPlainProfiles[] = {66, 77, 88, 0, 255};
constexpr uint32_t kSevenProfiles[] = {100, 110, 122, 244, 44, 83, 86};
constexpr uint32_t kSixProfiles[] = {118, 128, 138, 139, 134, 135};

class Random {
  public:
    explicit Random(uint32_t seed) : mEngine(seed) {}

    // 0 to `count` - 1.
    uint32_t below(uint32_t count) { return static_cast<uint32_t>(mEngine() % count); }
    bool oneIn(uint32_t count) { return below(count) == 0; }
    // Up to `bits` bits, short numbers as likely as long ones; below 2^32 - 1.
    uint32_t upTo(uint32_t bits) {
        const uint32_t length = below(bits + 1);
        const uint64_t number = mEngine() & ((uint64_t{1} << length) - 1);
        return static_cast<uint32_t>(std::min<uint64_t>(number, 0xFFFFFFFE));
    }
    int32_t signedUpTo(uint32_t bits) {
        const auto number = static_cast<int32_t>(upTo(bits));
        return oneIn(2) ? number : -number;
    }
    template <size_t N>
    uint32_t of(const uint32_t (&choices)[N]) {
        return choices[below(N)];
    }

  private:
    std::mt19937 mEngine;
};

void addScalingMatrix(Random* random, SpsBits* bits, uint32_t lists) {
    for (uint32_t list = 0; list < lists; ++list) {
        const bool isPresent = random->oneIn(2);
        bits->u(1, isPresent ? 1 : 0);
        if (!isPresent) continue;
        int32_t scale = 8;
        for (int i = 0; i < (list < 6 ? 16 : 64); ++i) {
            const int32_t delta = random->oneIn(8) ? -scale : random->signedUpTo(8);
            bits->se(delta);
            scale = (scale + std::clamp(delta, -128, 127) + 256) % 256;
            if (scale == 0) break;
        }
    }
}

void addPictureOrder(Random* random, SpsBits* bits) {
    const uint32_t type = random->below(3);
    bits->ue(type);
    if (type == 0) bits->ue(random->upTo(4));
    if (type != 1) return;
    const uint32_t count = random->upTo(4);
    bits->u(1, random->below(2)).se(random->signedUpTo(30)).se(random->signedUpTo(30)).ue(count);
    for (uint32_t i = 0; i < count; ++i)
        bits->se(random->signedUpTo(30));
}

void addUsability(Random* random, SpsBits* bits) {
    const bool hasRatio = !random->oneIn(4);
    bits->u(1, hasRatio ? 1 : 0);
    const uint32_t ratio = random->oneIn(2) ? 255 : random->below(20);
    if (hasRatio) bits->u(8, ratio);
    if (hasRatio && ratio == 255) bits->u(16, random->upTo(16)).u(16, random->upTo(16));
    for (uint32_t words = random->below(4); words > 0; --words)
        bits->u(32, random->upTo(32));
}

// Fields as a valid set of a usable size has them, in any profile.
SpsFields randomFields(Random* random) {
    SpsFields fields;
    const uint32_t kind = random->below(4);
    fields.profile = kind == 0   ? random->of(kPlainProfiles)
                     : kind == 1 ? random->of(kSixProfiles)
                                 : random->of(kSevenProfiles);
    if (kind > 0) fields.chroma = random->below(4);
    fields.level = random->oneIn(4) ? 0 : random->below(256);
    fields.id = random->oneIn(2) ? 0 : random->upTo(18);
    fields.separatePlanes = random->oneIn(2);
    if (random->oneIn(3)) {
        const uint32_t lists = fields.chroma == 3u ? 12 : 8;
        fields.scalingMatrix = [=](SpsBits& bits) { addScalingMatrix(random, &bits, lists); };
    }
    fields.pictureOrder = [=](SpsBits& bits) { addPictureOrder(random, &bits); };
    fields.widthInMbs = random->upTo(11) + 1;
    fields.heightInMapUnits = random->upTo(11) + 1;
    fields.frameMbsOnly = random->oneIn(2);
    // At most 12 of the 16 samples that a picture has at least, in units of up to four.
    if (random->oneIn(2)) {
        fields.crop = {random->below(3), random->below(2), random->below(2), random->below(3)};
    }
    if (random->oneIn(2)) fields.vui = [=](SpsBits& bits) { addUsability(random, &bits); };
    return fields;
}

// What valid sets do not have.
void spoilFields(Random* random, SpsFields* fields) {
    switch (random->below(5)) {
        case 0:
            fields->chroma = random->upTo(32);
            break;
        case 1:
            fields->chroma.reset();
            break;
        case 2:
            fields->crop = {random->upTo(32), random->upTo(32), random->upTo(32), random->upTo(32)};
            break;
        case 3:
            fields->widthInMbs = random->upTo(32) + 1;
            break;
        default:
            fields->heightInMapUnits = random->upTo(32) + 1;
    }
}

void spoilBytes(Random* random, Bytes* nal) {
    const auto size = static_cast<uint32_t>(nal->size());
    const auto at = nal->begin() + 1 + random->below(size - 1);
    switch (random->below(4)) {
        case 0:
            *at = static_cast<uint8_t>(*at ^ 1u << random->below(8));
            break;
        case 1:
            *at = static_cast<uint8_t>(random->below(256));
            break;
        case 2:
            nal->erase(at, nal->end());
            break;
        default: {
            const Bytes zerosAndThree(2 + random->below(2), 0);
            nal->insert(nal->insert(at, 3), zerosAndThree.begin(), zerosAndThree.end());
        }
    }
}

Bytes randomSet(Random* random) {
    SpsFields fields = randomFields(random);
    if (random->oneIn(4)) spoilFields(random, &fields);
    Bytes nal = random->oneIn(4) ? fields.unescapedNal() : fields.nal();
    for (uint32_t changes = random->below(3); changes > 0 && nal.size() > 1; --changes)
        spoilBytes(random, &nal);
    return nal;
}

class RandomParameterSets : public testing::Test {
  protected:
    // 0 unless the tests are shuffled.
    Random mRandom{static_cast<uint32_t>(testing::UnitTest::GetInstance()->random_seed())};

    void SetUp() override { __android_log_set_aborter(&RandomParameterSets::printAndAbort); }
    void TearDown() override { __android_log_set_aborter(__android_log_default_aborter); }

    // Through the platform's parser. Answers whether it finds a size.
    static bool hasSize(const Bytes& nal) {
        sParsed = &nal;
        int32_t width = 0;
        int32_t height = 0;
        FindAVCDimensions(ABuffer::CreateAsCopy(nal.data(), nal.size()), &width, &height);
        return width > 0 && height > 0;
    }

  private:
    static const Bytes* sParsed;

    static void printAndAbort(const char* message) {
        std::fprintf(stderr, "%s\nat the set", message);
        for (const uint8_t byte : *sParsed)
            std::fprintf(stderr, " %02x", byte);
        std::fputc('\n', stderr);
        std::abort();
    }
};

const Bytes* RandomParameterSets::sParsed = nullptr;

TEST_F(RandomParameterSets, WhatTheCheckAcceptsHasASize) {
    constexpr size_t kSets = 100000;
    size_t accepted = 0;
    for (size_t i = 0; i < kSets; ++i) {
        const Bytes nal = randomSet(&mRandom);
        if (!isSane(nal)) continue;
        ++accepted;
        ASSERT_TRUE(hasSize(nal)) << testing::PrintToString(nal);
    }
    RecordProperty("accepted", std::to_string(accepted));
    EXPECT_GT(accepted, kSets / 4);
    EXPECT_LT(accepted, kSets / 4 * 3);
}

// Without emulation prevention, chroma formats of the six profiles and matrices of 4:4:4 all
// readings are one.
TEST_F(RandomParameterSets, ValidSetsThatReadOneWayAreAccepted) {
    size_t tested = 0;
    for (size_t i = 0; i < 20000; ++i) {
        const SpsFields fields = randomFields(&mRandom);
        const bool isOfSix =
            std::count(std::begin(kSixProfiles), std::end(kSixProfiles), fields.profile) != 0;
        if (isOfSix || (fields.chroma == 3u && fields.scalingMatrix)) continue;
        const Bytes nal = fields.nal();
        static constexpr uint8_t kEscape[] = {0, 0, 3};
        if (std::search(nal.begin(), nal.end(), std::begin(kEscape), std::end(kEscape)) !=
            nal.end()) {
            continue;
        }
        ++tested;
        ASSERT_TRUE(isSane(nal)) << testing::PrintToString(nal);
        ASSERT_TRUE(hasSize(nal)) << testing::PrintToString(nal);
    }
    EXPECT_GT(tested, 5000u);
}

}  // namespace
}  // namespace android
