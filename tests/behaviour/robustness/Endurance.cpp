// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/robustness/Endurance.h"

#include <android/log.h>

#include <algorithm>
#include <cerrno>

#include "service/Extractor.h"
#include "service/MemorySource.h"

namespace avitest {

using android::service::BufferGroup;
using android::service::DataSource;
using android::service::Extractor;
using android::service::MemorySource;
using android::service::Track;
using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

namespace {

constexpr size_t kChunkHeaderBytes = 8;

// Asks what players ask before they read.
void query(const Extractor& extractor) {
    extractor.metaData();
    extractor.flags();
    extractor.name();
    const size_t tracks = extractor.countTracks();
    for (size_t i = 0; i <= tracks; ++i) {
        extractor.trackMetaData(i);
        extractor.trackMetaData(i, Extractor::kIncludeExtensiveMetaData);
    }
}

bool isPrefix(const std::vector<Sample>& samples, const std::vector<Bytes>& all) {
    return samples.size() <= all.size() && std::equal(samples.begin(), samples.end(), all.begin(),
                                                      [](const Sample& sample, const Bytes& bytes) {
                                                          return sample.bytes == bytes;
                                                      });
}

}  // namespace

ssize_t WatchedSource::readAt(off64_t offset, void* data, size_t size) {
    ++mReads;
    return exhausted() ? -EIO : mSource.readAt(offset, data, size);
}

size_t mostSamples(size_t bytes) {
    return bytes / kChunkHeaderBytes;
}

// Every header is read on its own and a few of them twice; each sample costs a read of its bytes
// and a look at the frame behind it.
uint64_t mostReads(size_t bytes) {
    constexpr uint64_t kAnyFile = 100;
    constexpr uint64_t kReadsPerChunk = 8;
    return kAnyFile + kReadsPerChunk * (bytes / kChunkHeaderBytes);
}

AssertionResult readsEnd(Track& track, size_t samples) {
    BufferGroup group;
    if (track.start(group) != AMEDIA_OK) return AssertionSuccess();
    AssertionResult result = AssertionFailure() << "no end after " << samples + 1 << " reads";
    for (size_t i = 0; i <= samples; ++i) {
        if (track.read().status != AMEDIA_ERROR_END_OF_STREAM) continue;
        result = AssertionSuccess();
        break;
    }
    track.stop();
    if (group.heldCount() != 0) return AssertionFailure() << "buffers held after stop";
    return result;
}

AssertionResult endures(DataSource& source, size_t bytes) {
    WatchedSource watched(source, mostReads(bytes));
    const auto extractor = Extractor::open(pluginUnderTest(), watched);
    if (extractor == nullptr) return AssertionSuccess();
    query(*extractor);
    const size_t tracks = extractor->countTracks();
    for (size_t i = 0; i < tracks; ++i) {
        const auto track = extractor->track(i);
        if (track == nullptr) return AssertionFailure() << "no track " << i << " of " << tracks;
        const AssertionResult ends = readsEnd(*track, mostSamples(bytes));
        if (!ends) return AssertionFailure() << "track " << i << ": " << ends.message();
    }
    if (watched.exhausted()) return AssertionFailure() << watched.reads() << " reads";
    return AssertionSuccess();
}

AssertionResult endures(const Bytes& file) {
    MemorySource source(file.data(), file.size());
    return endures(source, file.size());
}

std::vector<ReadRun> play(DataSource& source, size_t bytes) {
    std::vector<ReadRun> runs;
    const auto extractor = Extractor::open(pluginUnderTest(), source);
    if (extractor == nullptr) return runs;
    const size_t tracks = extractor->countTracks();
    for (size_t i = 0; i < tracks; ++i) {
        const auto track = extractor->track(i);
        EXPECT_NE(nullptr, track) << "track " << i << " of " << tracks;
        if (track != nullptr) runs.push_back(readTrack(*track, {}, mostSamples(bytes) + 1));
    }
    return runs;
}

SmallFile withSamples(SmallFile file) {
    if (!file.samples.empty()) return file;
    MemorySource source(file.bytes.data(), file.bytes.size());
    for (const ReadRun& run : play(source, file.bytes.size()))
        file.samples.push_back(payloadsOf(run.samples));
    return file;
}

AssertionResult isShorter(const std::vector<ReadRun>& runs, const SmallFile& file) {
    for (size_t track = 0; track < runs.size(); ++track) {
        const ReadRun& run = runs[track];
        const bool known = std::any_of(
            file.samples.begin(), file.samples.end(),
            [&run](const std::vector<Bytes>& all) { return isPrefix(run.samples, all); });
        if (!known) return AssertionFailure() << "track " << track << " has foreign samples";
        if (run.status == AMEDIA_OK) return AssertionFailure() << "track " << track << " goes on";
    }
    return AssertionSuccess();
}

std::string kindName(const ::testing::TestParamInfo<SmallFile>& info) {
    return info.param.name;
}

QuietTest::QuietTest() : mFormerPriority(__android_log_set_minimum_priority(ANDROID_LOG_FATAL)) {}

QuietTest::~QuietTest() {
    __android_log_set_minimum_priority(mFormerPriority);
}

}  // namespace avitest
