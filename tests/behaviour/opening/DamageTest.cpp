// SPDX-License-Identifier: Apache-2.0
//
// A small file cut after each of its bytes, and read through sources that fail at each of their
// calls: what comes back is a status or fewer samples, and every sample that comes is a true one.

#include <algorithm>
#include <map>

#include "service/Extractor.h"
#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::DataSource;
using android::service::Extractor;
using android::service::Fault;
using android::service::FaultySource;
using android::service::MemorySource;
using android::service::Track;

constexpr char kVideo[] = "video/x-motion-jpeg";
constexpr char kAudio[] = "audio/raw";

// Everything that a player would get out of a source. A stream whose headers are damaged may be
// dropped, so tracks are told apart by their MIME types.
struct Harvest {
    bool claimed = false;
    size_t tracks = 0;
    std::map<std::string, std::vector<Bytes>> samples;

    size_t count(const std::string& mime) const {
        const auto found = samples.find(mime);
        return found == samples.end() ? 0 : found->second.size();
    }
};

class Damage : public ::testing::Test {
  protected:
    Damage() : mAvi(twoStreamFile()), mFile(mAvi.build()) {
        MemorySource memory(mFile);
        FaultySource source(memory);
        mWhole = harvest(source);
        mCalls = source.callCount();
    }

    // Reads every track to its end, but never more than one sample too many.
    Harvest harvest(DataSource& source) {
        Harvest result;
        mLog.clear();
        const auto opened = Extractor::open(pluginUnderTest(), source);
        if (opened == nullptr) return result;
        result.claimed = true;
        opened->metaData();
        result.tracks = opened->countTracks();
        for (size_t i = 0; i < result.tracks; ++i) {
            const auto format =
                opened->trackMetaData(i, Extractor::kIncludeExtensiveMetaData).format;
            const auto track = opened->track(i);
            if (track == nullptr) continue;
            result.samples[format.getString(AMEDIAFORMAT_KEY_MIME).value_or("")] = readSome(*track);
        }
        return result;
    }

    // The harvest of a damaged source is a part of the whole one: of each track some samples from
    // the first one on.
    void expectPartOfTheWhole(const Harvest& part) {
        EXPECT_LE(part.tracks, mWhole.tracks);
        for (const auto& [mime, samples] : part.samples) {
            SCOPED_TRACE(mime);
            const std::vector<Bytes>& whole = mWhole.samples[mime];
            ASSERT_LE(samples.size(), whole.size());
            EXPECT_TRUE(std::equal(samples.begin(), samples.end(), whole.begin()));
        }
    }

    // A fault on each single call, and one on all calls from it on.
    void expectPartsWith(const Fault& fault) {
        for (uint64_t call = 0; call < mCalls; ++call) {
            SCOPED_TRACE(call);
            for (const Fault& placed : {fault.onCall(call), fault.fromCall(call)}) {
                MemorySource memory(mFile);
                FaultySource source(memory);
                source.inject(placed);
                expectPartOfTheWhole(harvest(source));
            }
        }
    }

    LogCapture mLog;
    AviFile mAvi;
    Bytes mFile;
    Harvest mWhole;
    uint64_t mCalls = 0;

  private:
    static std::vector<Bytes> readSome(Track& track) {
        constexpr size_t kMoreThanThereAre = 4;
        return payloadsOf(readTrack(track, {}, kMoreThanThereAre).samples);
    }
};

TEST_F(Damage, UndamagedFileGivesEverything) {
    ASSERT_EQ(2u, mWhole.tracks);
    EXPECT_EQ(mAvi.payloads(0), mWhole.samples[kVideo]);
    EXPECT_EQ(mAvi.payloads(1), mWhole.samples[kAudio]);
}

TEST_F(Damage, EachTruncatedPrefixGivesAPart) {
    for (size_t length = 0; length < mFile.size(); ++length) {
        SCOPED_TRACE(length);
        MemorySource source(mFile.data(), length);
        const Harvest part = harvest(source);
        EXPECT_EQ(length >= 12, part.claimed);
        expectPartOfTheWhole(part);
    }
}

TEST_F(Damage, PrefixWithoutWholeHeadersHasNoTracks) {
    const ChunkPlace headers = mAvi.place("hdrl");
    for (size_t length = 0; length < headers.dataOffset + headers.dataSize; ++length) {
        SCOPED_TRACE(length);
        MemorySource source(mFile.data(), length);
        EXPECT_EQ(0u, harvest(source).tracks);
    }
}

// The index in front of the samples survives the cut.
TEST_F(Damage, EachTruncatedPrefixOfAFileWithItsIndexInFrontGivesAPart) {
    mAvi.segment().index.offsets = IndexOffsets::kAbsolute;
    mAvi.segment().edit = [](Chunk& riff) { riff.arrange({"hdrl", "idx1", "movi"}); };
    mFile = mAvi.build();
    size_t most = 0;
    for (size_t length = 0; length <= mFile.size(); ++length) {
        SCOPED_TRACE(length);
        MemorySource source(mFile.data(), length);
        const Harvest part = harvest(source);
        expectPartOfTheWhole(part);
        most = std::max(most, part.count(kVideo));
    }
    EXPECT_EQ(3u, most);
}

TEST_F(Damage, EmptyReadAtEachCallGivesAPart) {
    expectPartsWith(Fault::shortRead(0));
}

TEST_F(Damage, ReadOfOneByteAtEachCallGivesAPart) {
    expectPartsWith(Fault::shortRead(1));
}

TEST_F(Damage, ReadOfEightBytesAtEachCallGivesAPart) {
    expectPartsWith(Fault::shortRead(8));
}

TEST_F(Damage, ReadOfElevenBytesAtEachCallGivesAPart) {
    expectPartsWith(Fault::shortRead(11));
}

TEST_F(Damage, ReadErrorAtEachCallGivesAPart) {
    expectPartsWith(Fault::error(-EIO));
}

TEST_F(Damage, SourceWithoutASizeGivesNoTracks) {
    MemorySource memory(mFile);
    FaultySource source(memory);
    source.failGetSize(android::UNKNOWN_ERROR);
    const Harvest part = harvest(source);
    EXPECT_TRUE(part.claimed);
    EXPECT_EQ(0u, part.tracks);
}

}  // namespace
}  // namespace avitest
