// SPDX-License-Identifier: Apache-2.0
//
// The sniffer: which first twelve bytes are an AVI file, and what it answers.

#include <cstring>
#include <filesystem>
#include <string>

#include <stdlib.h>

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::CreatorFunc;
using android::FreeMetaFunc;
using android::service::DataSource;
using android::service::Extractor;
using android::service::Fault;
using android::service::FaultySource;
using android::service::MemorySource;
using android::service::PlainDataSource;
using android::service::PluginLibrary;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// What one call of the sniffer left behind; every out-parameter starts with a value of the test's.
struct Answer {
    CreatorFunc creator = nullptr;
    float confidence = 42.0f;
    void* meta = &meta;
    FreeMetaFunc freeMeta = [](void*) {};
    FreeMetaFunc freeMetaBefore = freeMeta;
};

Answer sniff(DataSource& source) {
    PlainDataSource plain(source);
    Answer answer;
    answer.creator = pluginUnderTest().sniffer()(plain.get(), &answer.confidence, &answer.meta,
                                                 &answer.freeMeta);
    return answer;
}

Answer sniff(const Bytes& content) {
    MemorySource source(content);
    return sniff(source);
}

// "RIFF", a size that nobody looks at, and a form type.
Bytes riffOf(ChunkId form, uint32_t size = 0xCAFEBABE) {
    return ByteWriter().fourcc("RIFF").u32(size).fourcc(form).take();
}

uint32_t bitsOf(float value) {
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

TEST(Sniff, TwelveBytesOfAnAviFileAreClaimed) {
    const Answer answer = sniff(riffOf("AVI "));
    EXPECT_NE(nullptr, answer.creator);
    EXPECT_EQ(0x3fb33333u, bitsOf(answer.confidence));
}

TEST(Sniff, RiffSizeIsNotLookedAt) {
    for (uint32_t size : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        SCOPED_TRACE(size);
        EXPECT_NE(nullptr, sniff(riffOf("AVI ", size)).creator);
    }
}

TEST(Sniff, FormEndingInByte19IsClaimed) {
    const Answer answer = sniff(riffOf("AVI\x19"));
    EXPECT_NE(nullptr, answer.creator);
    EXPECT_EQ(0x3fb33333u, bitsOf(answer.confidence));
}

TEST(Sniff, OtherFormsAreRejected) {
    for (const ChunkId form :
         {ChunkId("AVIX"), ChunkId("AVI\x18"), ChunkId("AVI\x1a"), ChunkId("AVI!"),
          ChunkId(0x00495641u), ChunkId("WAVE"), ChunkId("avi "), ChunkId("BVI "), ChunkId("AWI "),
          ChunkId("AVJ ")}) {
        SCOPED_TRACE(form.text());
        const Answer answer = sniff(riffOf(form));
        EXPECT_EQ(nullptr, answer.creator);
        EXPECT_EQ(0.0f, answer.confidence);
    }
}

TEST(Sniff, OtherFirstCodesAreRejected) {
    for (const ChunkId id : {ChunkId("RIFX"), ChunkId("riff"), ChunkId("LIST"), ChunkId("FFIR")}) {
        SCOPED_TRACE(id.text());
        const Answer answer = sniff(ByteWriter().fourcc(id).u32(4).fourcc("AVI ").take());
        EXPECT_EQ(nullptr, answer.creator);
        EXPECT_EQ(0.0f, answer.confidence);
    }
}

TEST(Sniff, FewerThanTwelveBytesAreRejected) {
    const Bytes whole = riffOf("AVI ");
    for (size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        const Answer answer = sniff(ByteWriter().bytes(whole).cut(length).take());
        EXPECT_EQ(nullptr, answer.creator);
        EXPECT_EQ(0.0f, answer.confidence);
    }
}

TEST(Sniff, ReadErrorIsARejection) {
    MemorySource memory(riffOf("AVI "));
    FaultySource source(memory);
    source.inject(Fault::error(-EIO));
    const Answer answer = sniff(source);
    EXPECT_EQ(nullptr, answer.creator);
    EXPECT_EQ(0.0f, answer.confidence);
}

// Reports more bytes than it was asked for, as no sound source does.
class BoastfulSource : public MemorySource {
  public:
    using MemorySource::MemorySource;
    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        return MemorySource::readAt(offset, data, size) + 1;
    }
};

TEST(Sniff, MoreThanTwelveBytesAreARejection) {
    BoastfulSource source(riffOf("AVI "));
    EXPECT_EQ(nullptr, sniff(source).creator);
}

TEST(Sniff, ReadsTheFirstTwelveBytesOnce) {
    MemorySource memory(videoFile().build());
    FaultySource source(memory);
    sniff(source);
    ASSERT_EQ(1u, source.callCount());
    EXPECT_EQ(0, source.calls()[0].offset);
    EXPECT_EQ(12u, source.calls()[0].size);
}

TEST(Sniff, MetaIsNeverWritten) {
    for (const ChunkId form : {ChunkId("AVI "), ChunkId("WAVE")}) {
        SCOPED_TRACE(form.text());
        MemorySource source(riffOf(form));
        PlainDataSource plain(source);
        Answer answer;
        void* const before = answer.meta;
        pluginUnderTest().sniffer()(plain.get(), &answer.confidence, &answer.meta,
                                    &answer.freeMeta);
        EXPECT_EQ(before, answer.meta);
        EXPECT_EQ(answer.freeMetaBefore, answer.freeMeta);
    }
}

class SniffLog : public LoggedFixture {
  protected:
    // The sniffer knows the switches from the extractor that was constructed last.
    void switchExtractLog(const std::string& value) {
        setProperty(kExtractLogProperty, value);
        openFile(riffOf("AVI "));
        mLog.clear();
    }
};

TEST_F(SniffLog, ClaimIsLoggedWithItsConfidence) {
    switchExtractLog("1");
    sniff(riffOf("AVI "));
    EXPECT_THAT(log(), ElementsAre(verbose("Sniff +"), verbose("Sniff - *confidence: 1.400000")));
}

TEST_F(SniffLog, RejectionIsLogged) {
    switchExtractLog("1");
    sniff(riffOf("WAVE"));
    EXPECT_THAT(log(), ElementsAre(verbose("Sniff +"), verbose("Sniff - *confidence = 0 @L5658")));
}

TEST_F(SniffLog, NothingIsLoggedWhileTheSwitchIsOff) {
    switchExtractLog("0");
    sniff(riffOf("AVI "));
    sniff(riffOf("WAVE"));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SniffLog, VerboseLogSwitchAloneShowsNothing) {
    setProperty(kVerboseLogProperty, "1");
    switchExtractLog("0");
    sniff(riffOf("AVI "));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SniffLog, PropertyIsNotReadByTheSniffer) {
    switchExtractLog("0");
    setProperty(kExtractLogProperty, "1");
    sniff(riffOf("AVI "));
    EXPECT_THAT(log(), IsEmpty());
}

// A second copy of the library has switches of its own, which no extractor has set yet.
class LibraryCopy {
  public:
    LibraryCopy() {
        std::string name = std::filesystem::temp_directory_path() / "avi-sniff-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        mFolder = name;
        std::filesystem::copy_file(pluginUnderTest().path(), path());
    }
    LibraryCopy(const LibraryCopy&) = delete;
    LibraryCopy& operator=(const LibraryCopy&) = delete;
    ~LibraryCopy() {
        std::error_code ignored;
        std::filesystem::remove_all(mFolder, ignored);
    }
    std::filesystem::path path() const { return mFolder / "libfreshextractor.so"; }

  private:
    std::filesystem::path mFolder;
};

TEST_F(SniffLog, LibraryJustLoadedLogsNothingWhateverTheProperty) {
    setProperty(kExtractLogProperty, "1");
    const LibraryCopy copy;
    const PluginLibrary fresh(copy.path(), PluginLibrary::Unload::kNever);
    MemorySource source(riffOf("AVI "));
    EXPECT_TRUE(Extractor::sniff(fresh, source).claimed);
    EXPECT_THAT(log(), IsEmpty());

    Extractor::open(fresh, source);  // its constructor turns the switch on
    mLog.clear();
    EXPECT_TRUE(Extractor::sniff(fresh, source).claimed);
    EXPECT_THAT(log(), Contains(verbose("Sniff +")));
}

}  // namespace
}  // namespace avitest
