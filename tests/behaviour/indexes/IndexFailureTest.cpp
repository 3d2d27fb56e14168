// SPDX-License-Identifier: Apache-2.0
//
// OpenDML indexes that cannot be used: how each failure is told, and that the samples then come
// from idx1 or from the chunks themselves.

#include <cerrno>

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using android::service::FaultySource;
using ::testing::Contains;

struct Failure {
    std::string name;
    std::function<void(IndexedFile&)> damage;
    std::string inSuper;     // code that the super index fails with, "" for none
    std::string inStandard;  // code that a standard index fails with, "" for none
    std::function<void(const IndexedFile&, FaultySource&)> fault = nullptr;
};

void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.name;
}

// Makes reads of any byte of the range come back empty.
void breakReads(FaultySource& source, uint64_t begin, uint64_t end) {
    source.inject(
        Fault::shortRead(0).onOffsets(static_cast<off64_t>(begin), static_cast<off64_t>(end)));
}

std::function<void(IndexedFile&)> superType(uint8_t type) {
    return [type](IndexedFile& made) { made.super.header.type = type; };
}

std::function<void(IndexedFile&)> superCount(uint32_t count) {
    return [count](IndexedFile& made) { made.super.header.entriesInUse = count; };
}

std::function<void(IndexedFile&)> partType(uint8_t type, uint8_t subType) {
    return [=](IndexedFile& made) {
        made.parts[1].header.type = type;
        made.parts[1].header.subType = subType;
    };
}

std::function<void(IndexedFile&)> partCount(uint32_t count) {
    return [count](IndexedFile& made) { made.parts[1].header.entriesInUse = count; };
}

std::function<void(IndexedFile&)> partSize(uint32_t size) {
    return [size](IndexedFile& made) { made.super.entries[1].size = size; };
}

void nothing(IndexedFile&) {}

std::vector<Failure> failures() {
    // The super index has room for 2 entries: 56 bytes. The second standard index has 2: 40 bytes.
    return {
        {"SuperOfType2", superType(2), kUnsupported, ""},
        {"SuperOfType3", superType(3), kUnsupported, ""},
        {"SuperOfTypeData", superType(0x80), kUnsupported, ""},
        {"SuperOfType255", superType(255), kUnsupported, ""},
        {"SuperWithMoreThanAnEntryFor8Bytes", superCount(56 / 8 + 1), kMalformed, ""},
        {"SuperCountWrapsIn32Bits", superCount(0x20000000), kMalformed, ""},
        {"SuperCountOfTwoToThe31", superCount(0x80000000), kMalformed, ""},
        {"SuperCountOfMinusOne", superCount(0xFFFFFFFF), kMalformed, ""},
        {"SuperHeaderUnreadable", nothing, kIoError, "",
         [](const IndexedFile& made, FaultySource& source) {
             const uint64_t data = made.superPlace().dataOffset;
             breakReads(source, data + 4, data + 24);
         }},
        {"SuperEntryUnreadable", nothing, kIoError, "",
         [](const IndexedFile& made, FaultySource& source) {
             const uint64_t data = made.superPlace().dataOffset;
             breakReads(source, data + 24 + 16, data + 56);
         }},
        {"StandardShorterThanItsHeader", partSize(23), kMalformed, kMalformed},
        {"StandardOfSize0", partSize(0), kMalformed, kMalformed},
        {"StandardOfSuperType", partType(0, 0), kMalformed, kMalformed},
        {"StandardOfType2", partType(2, 0), kMalformed, kMalformed},
        {"StandardIsFieldIndex", partType(1, 1), kMalformed, kMalformed},
        {"StandardOfSubType2", partType(1, 2), kMalformed, kMalformed},
        {"StandardEntriesDoNotFitByOneByte", partSize(39), kMalformed, kMalformed},
        {"StandardHasOneEntryTooMany", partCount(3), kMalformed, kMalformed},
        {"StandardCountWrapsIn32Bits", partCount(0x20000000), kMalformed, kMalformed},
        {"StandardCountOfTwoToThe31", partCount(0x80000000), kMalformed, kMalformed},
        {"StandardCountOfMinusOne", partCount(0xFFFFFFFF), kMalformed, kMalformed},
        {"StandardHeaderUnreadable", nothing, kIoError, kIoError,
         [](const IndexedFile& made, FaultySource& source) {
             const uint64_t data = made.partPlace(1).dataOffset;
             breakReads(source, data + 20, data + 24);
         }},
        {"StandardEntriesUnreadable", nothing, kIoError, "",
         [](const IndexedFile& made, FaultySource& source) {
             const uint64_t data = made.partPlace(1).dataOffset;
             breakReads(source, data + 32, data + 40);
         }},
        {"PointsAtItself",
         [](IndexedFile& made) { made.super.entries[1].offset = made.superPlace().headerOffset; },
         kMalformed, kMalformed},
        {"PointsIntoTheHeaders", [](IndexedFile& made) { made.super.entries[1].offset = 12; },
         kMalformed, kMalformed},
    };
}

class IndexFailure : public IndexesFixture, public ::testing::WithParamInterface<Failure> {
  protected:
    void open(IndexedFile& made) {
        made.layOut();
        GetParam().damage(made);
        FaultySource& source = mSources.emplace_back(mMemory.emplace_back(made.bytes()));
        if (GetParam().fault) GetParam().fault(made, source);
        openSource(source);
    }

    IndexedFile mMade{{2, 2}};
};

TEST_P(IndexFailure, IsLoggedWithItsCode) {
    open(mMade);
    countTracks();
    for (const char* code : {kIoError, kMalformed, kUnsupported}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(GetParam().inSuper == code ? 1u : 0u,
                  mLog.count(ANDROID_LOG_ERROR, failureOf("parseINDX", code)));
        EXPECT_EQ(GetParam().inStandard == code ? 1u : 0u,
                  mLog.count(ANDROID_LOG_ERROR, failureOf("parseChunkIndex", code)));
    }
}

TEST_P(IndexFailure, LeavesTheSamplesToIdx1) {
    mMade.avi.segment().index.copies = 1;
    open(mMade);
    EXPECT_EQ(mMade.chunks(), readPayloads(0));
    EXPECT_EQ(0u, mLog.count("we already have index"));
    EXPECT_FALSE(scanned());
}

TEST_P(IndexFailure, LeavesTheSamplesToAScan) {
    open(mMade);
    EXPECT_EQ(mMade.chunks(), readPayloads(0));
    EXPECT_TRUE(scanned());
}

INSTANTIATE_TEST_SUITE_P(Indexes, IndexFailure, ::testing::ValuesIn(failures()),
                         [](const auto& param) { return param.param.name; });

class IndexDamage : public IndexesFixture {};

TEST_F(IndexDamage, IndexInTheStreamListMayFailItself) {
    for (const bool isField : {true, false}) {
        SCOPED_TRACE(isField);
        mLog.clear();
        AviFile avi = unindexedFile(3);
        avi.stream(0).openDml = OpenDml::kStandard;
        avi.stream(0).edit = [isField](Chunk& strl) {
            Bytes& index = strl.child("indx").payload;
            index[isField ? 2 : 4] += 1;  // a sub-type of 1, or an entry too many
        };
        openFile(avi.build());
        EXPECT_EQ(avi.payloads(0), readPayloads(0));
        EXPECT_TRUE(scanned());
        EXPECT_EQ(1u, mLog.count(ANDROID_LOG_ERROR, failureOf("parseChunkIndex", kMalformed)));
        EXPECT_EQ(0u, mLog.count("parseINDX(): error"));
    }
}

TEST_F(IndexDamage, ChunkShorterThanTheHeaderFails) {
    for (const size_t size : {0u, 1u, 22u}) {
        SCOPED_TRACE(size);
        mLog.clear();
        AviFile avi = unindexedFile(3);
        avi.stream(0).edit = [size](Chunk& strl) { strl.add(Chunk("indx", Bytes(size))); };
        openFile(avi.build());
        EXPECT_EQ(avi.payloads(0), readPayloads(0));
        EXPECT_TRUE(scanned());
        EXPECT_EQ(1u, mLog.count(ANDROID_LOG_ERROR, failureOf("parseINDX", kMalformed)));
    }
}

TEST_F(IndexDamage, ChunkOfJustTheHeaderIsAnEmptySuperIndex) {
    AviFile avi = unindexedFile(3);
    avi.stream(0).edit = [](Chunk& strl) { strl.add(Chunk("indx", Bytes(24))); };
    openFile(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_EQ(0u, mLog.count("parseINDX(): error"));
}

// Eight bytes an entry is all that is asked for, so the entries may reach behind the chunk.
TEST_F(IndexDamage, SuperIndexMayClaimAnEntryFor8Bytes) {
    IndexedFile made({2, 2});
    made.avi.stream(0).edit = [edit = made.avi.stream(0).edit](Chunk& strl) {
        edit(strl);
        strl.add(Chunk("JUNK", Bytes(56)));
    };
    made.layOut();
    made.super.header.entriesInUse = 7;  // 7 x 8 = 56
    // What lies behind makes the other five: the header of JUNK one far beyond the file's end, its
    // zeros one of size 0, which fails.
    openFile(made.bytes());
    countTracks();
    EXPECT_EQ(1u, mLog.count("parseINDX(): The track has a super index with 7 entries..."));
    EXPECT_EQ(1u, mLog.count("parseChunkIndex() to the file end~!"));
    EXPECT_EQ(1u, mLog.count("start parseChunkIndex(3) @("));
    EXPECT_EQ(0u, mLog.count("start parseChunkIndex(4) @("));
}

TEST_F(IndexDamage, ThreeEntriesIn48BytesAreReadAsFarAsTheFileAllows) {
    IndexedFile made({2}, 3);
    made.avi.stream(0).edit = [](Chunk& strl) {
        strl.add(Chunk("indx", Bytes(24 + 24)).marked("indx"));
    };
    made.layOut();
    made.super.entries[1] = {1U << 30, 0, 0};
    made.super.entries.resize(2);
    made.super.header.entriesInUse = 3;
    Bytes super = made.super.toBytes();
    super.resize(48);
    const Bytes whole = made.parts[0].toBytes();
    Bytes file = made.avi.build();
    std::copy(super.begin(), super.end(),
              file.begin() + static_cast<ptrdiff_t>(made.superPlace().dataOffset));
    std::copy(whole.begin(), whole.end(),
              file.begin() + static_cast<ptrdiff_t>(made.partPlace(0).dataOffset));
    openFile(file);
    countTracks();
    EXPECT_EQ(1u, mLog.count("start parseChunkIndex(1) @("));
    EXPECT_EQ(1u, mLog.count("start parseChunkIndex(2) @("));
}

TEST_F(IndexDamage, ReadThatFailsInALaterBatchIsToldWithTheFirstEntrysPlace) {
    IndexedFile made({1, 600});
    made.layOut();
    const uint64_t entries = made.partPlace(1).dataOffset + 24;
    FaultySource& source = mSources.emplace_back(mMemory.emplace_back(made.bytes()));
    source.inject(Fault::shortRead(100).onOffsets(static_cast<off64_t>(entries + 4096),
                                                  static_cast<off64_t>(entries + 4800)));
    openSource(source);
    EXPECT_EQ(made.chunks(), readPayloads(0));
    EXPECT_THAT(log(),
                Contains(error(format("parseChunkIndex(): Failed to read chunk entry at %llu",
                                      number(entries)))));
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_ERROR, failureOf("parseINDX", kIoError)));
    EXPECT_EQ(0u, mLog.count("parseChunkIndex(): error -"));
    EXPECT_TRUE(scanned());
}

TEST_F(IndexDamage, FailedReadReturnsAnErrorCodeAsWellAsTooLittle) {
    IndexedFile made({3});
    made.layOut();
    const auto data = static_cast<off64_t>(made.partPlace(0).dataOffset);
    FaultySource& source = mSources.emplace_back(mMemory.emplace_back(made.bytes()));
    source.inject(Fault::error(-EIO).onOffsets(data + 24, data + 48));
    openSource(source);
    EXPECT_EQ(made.chunks(), readPayloads(0));
    EXPECT_EQ(1u, mLog.count("parseChunkIndex(): Failed to read chunk entry at "));
}

TEST_F(IndexDamage, FailureEndsTheSuperIndex) {
    IndexedFile made({1, 1, 1});
    made.layOut();
    made.parts[1].header.type = 7;
    openFile(made.bytes());
    countTracks();
    EXPECT_EQ(1u, mLog.count("start parseChunkIndex(1) @("));
    EXPECT_EQ(0u, mLog.count("start parseChunkIndex(2) @("));
}

// Whatever the first one listed: a stream is indexed completely or not at all.
TEST_F(IndexDamage, SecondIndexThatFailsLeavesTheStreamToIdx1) {
    AviFile avi = twoStreamFile();
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(1).openDml = OpenDml::kStandard;
    avi.stream(0).edit = [](Chunk& strl) { strl.add(Chunk("indx", Bytes(20))); };
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ(0u, mLog.count("we already have index, ignore idx1!"));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_FALSE(scanned());
}

TEST_F(IndexDamage, IndexAfterOneThatFailsFillsTheTable) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(1).openDml = OpenDml::kStandard;
    avi.stream(0).edit = [](Chunk& strl) { strl.insert(2, Chunk("indx", Bytes(20))); };
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(std::vector<bool>({true, false, true}), syncFlags(0));
    EXPECT_FALSE(scanned());
}

}  // namespace
}  // namespace avitest
