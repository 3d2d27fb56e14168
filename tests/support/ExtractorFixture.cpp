// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ExtractorFixture.h"

#include <ostream>
#include <stdexcept>
#include <utility>

namespace avitest {

using android::service::BufferGroup;
using android::service::BufferHandle;
using android::service::DataSource;
using android::service::Extractor;
using android::service::FormatResult;
using android::service::MediaFormat;
using android::service::MemorySource;
using android::service::PluginLibrary;
using android::service::ReadResult;
using android::service::Track;

bool operator==(const Sample& a, const Sample& b) {
    return a.timeUs == b.timeUs && a.targetTimeUs == b.targetTimeUs && a.sync == b.sync &&
           a.bytes == b.bytes;
}

void PrintTo(const Sample& sample, std::ostream* out) {
    *out << sample.bytes.size() << " bytes @" << sample.timeUs << (sample.sync ? " sync" : "");
    if (sample.targetTimeUs) *out << " target " << *sample.targetTimeUs;
}

const PluginLibrary& pluginUnderTest() {
    // Kept loaded, so that a leak report at the end can name the plug-in's functions.
    static const PluginLibrary library(AVI_PLUGIN_PATH, PluginLibrary::Unload::kNever);
    return library;
}

Sample sampleOf(const BufferHandle& buffer) {
    const auto meta = buffer.metaData();
    const std::optional<int64_t> time = meta.getInt64(AMEDIAFORMAT_KEY_TIME_US);
    EXPECT_TRUE(time.has_value()) << "a buffer without a time";
    Sample sample;
    sample.timeUs = time.value_or(0);
    sample.targetTimeUs = meta.getInt64(AMEDIAFORMAT_KEY_TARGET_TIME);
    sample.sync = meta.getInt32(AMEDIAFORMAT_KEY_IS_SYNC_FRAME).value_or(0) != 0;
    sample.bytes = buffer.bytes();
    return sample;
}

std::vector<Bytes> payloadsOf(const std::vector<Sample>& samples) {
    std::vector<Bytes> result;
    for (const Sample& sample : samples)
        result.push_back(sample.bytes);
    return result;
}

std::vector<int64_t> timesOf(const std::vector<Sample>& samples) {
    std::vector<int64_t> result;
    for (const Sample& sample : samples)
        result.push_back(sample.timeUs);
    return result;
}

ReadRun readTrack(Track& track, const SeekRequest& first, size_t limit) {
    ReadRun run;
    BufferGroup group;
    run.status = track.start(group);
    if (run.status != AMEDIA_OK) return run;
    SeekRequest request = first;
    while (run.samples.size() < limit) {
        const ReadResult result = track.read(request.options, request.timeUs);
        request = {};
        run.status = result.status;
        EXPECT_EQ(result.status == AMEDIA_OK, static_cast<bool>(result.buffer))
            << "status " << result.status << " and buffer do not agree";
        if (result.status != AMEDIA_OK || !result.buffer) break;
        run.samples.push_back(sampleOf(result.buffer));
    }
    EXPECT_EQ(AMEDIA_OK, track.stop());
    EXPECT_EQ(0u, group.heldCount()) << "buffers held after stop";
    return run;
}

ExtractorFixture::~ExtractorFixture() {
    close();
}

void ExtractorFixture::setProperty(const char* name, const std::string& value) {
    mProperties.emplace_back(name, value);
}

void ExtractorFixture::close() {
    mExtractor.reset();
    mSource.reset();
    // Latest first, so that a property set twice gets back what it was at the beginning.
    while (!mProperties.empty())
        mProperties.pop_back();
}

bool ExtractorFixture::tryOpenFile(Bytes file) {
    mExtractor.reset();
    mSource = std::make_unique<MemorySource>(std::move(file));
    mExtractor = Extractor::open(pluginUnderTest(), *mSource);
    return mExtractor != nullptr;
}

void ExtractorFixture::openFile(Bytes file) {
    ASSERT_TRUE(tryOpenFile(std::move(file))) << "the plug-in does not claim the file";
}

void ExtractorFixture::openSource(DataSource& source) {
    mExtractor = Extractor::open(pluginUnderTest(), source);
    ASSERT_NE(nullptr, mExtractor) << "the plug-in does not claim the source";
}

Extractor& ExtractorFixture::extractor() {
    if (mExtractor == nullptr) throw std::logic_error("no file is open");
    return *mExtractor;
}

MediaFormat ExtractorFixture::trackFormat(size_t track) {
    FormatResult result = extractor().trackMetaData(track);
    EXPECT_EQ(AMEDIA_OK, result.status) << "track " << track;
    return std::move(result.format);
}

MediaFormat ExtractorFixture::fileFormat() {
    FormatResult result = extractor().metaData();
    EXPECT_EQ(AMEDIA_OK, result.status);
    return std::move(result.format);
}

std::unique_ptr<Track> ExtractorFixture::track(size_t index) {
    std::unique_ptr<Track> result = extractor().track(index);
    EXPECT_NE(nullptr, result) << "no track " << index;
    return result;
}

ReadRun ExtractorFixture::readRun(size_t trackIndex) {
    const std::unique_ptr<Track> source = track(trackIndex);
    return source == nullptr ? ReadRun() : readTrack(*source);
}

std::vector<Sample> ExtractorFixture::readAll(size_t trackIndex) {
    return readFrom(trackIndex, {});
}

std::vector<Sample> ExtractorFixture::readFrom(size_t trackIndex, const SeekRequest& seek,
                                               size_t limit) {
    const std::unique_ptr<Track> source = track(trackIndex);
    if (source == nullptr) return {};
    ReadRun run = readTrack(*source, seek, limit);
    const bool ended = run.samples.size() < limit;
    EXPECT_EQ(ended ? AMEDIA_ERROR_END_OF_STREAM : AMEDIA_OK, run.status);
    return std::move(run.samples);
}

}  // namespace avitest
