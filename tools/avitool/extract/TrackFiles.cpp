// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/extract/TrackFiles.h"

#include <fmt/format.h>

#include <optional>
#include <string>

#include "tools/avitool/Report.h"

namespace avitool {

namespace service = android::service;

namespace {

void writeText(const std::string& text, PartialFile* file) {
    file->write(text.data(), text.size());
}

// A sample without a time has nothing there.
std::string timeText(const service::BufferHandle& buffer) {
    const std::optional<int64_t> us = buffer.metaData().getInt64(AMEDIAFORMAT_KEY_TIME_US);
    return us ? std::to_string(*us) : std::string();
}

}  // namespace

TrackFiles::TrackFiles(const StreamForm& form, const std::filesystem::path& stream,
                       const std::filesystem::path& list)
    : mForm(form), mStream(stream), mList(list) {
    writeText("index,time_us,sync,size,offset\n", &mList);
}

void TrackFiles::begin(const uint8_t* sample, size_t size) {
    if (mBegun) return;
    mStream.write(mForm.fileHeader(sample, size));
    mBegun = true;
}

void TrackFiles::add(const service::BufferHandle& buffer) {
    const size_t size = buffer.rangeLength();
    const std::optional<Bytes> header = mForm.sampleHeader(size);
    if (!header) {
        throw SampleError(fmt::format("sample {} of {} bytes is too large for a .{} file", mSamples,
                                      size, mForm.extension()));
    }
    begin(buffer.data(), size);
    mStream.write(*header);
    writeText(fmt::format("{},{},{},{},{}\n", mSamples, timeText(buffer), isSync(buffer) ? 1 : 0,
                          size, mStream.size()),
              &mList);
    mStream.write(buffer.data(), size);
    ++mSamples;
    mSampleBytes += size;
}

void TrackFiles::publish() {
    begin(nullptr, 0);
    mStream.write(mForm.fileEnd(mSampleBytes));
    mStream.replaceFront(mForm.finalHeader(mSampleBytes));
    mStream.close();
    mList.close();
    mStream.publish();
    try {
        mList.publish();
    } catch (const WriteError&) {
        mStream.withdraw();
        throw;
    }
}

}  // namespace avitool
