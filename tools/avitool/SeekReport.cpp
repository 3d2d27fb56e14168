// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/SeekReport.h"

#include <strings.h>

#include <algorithm>
#include <deque>
#include <utility>

#include "tools/avitool/Text.h"

namespace avitool {

namespace service = android::service;

namespace {

bool isOfKind(const TrackReport& track, const std::string& kind) {
    const std::string mime = stringEntry(track.format, AMEDIAFORMAT_KEY_MIME);
    return strncasecmp(mime.c_str(), kind.c_str(), kind.size()) == 0;
}

// The tracks that take part, in the order of their seeks.
std::vector<TrackReport> tracksToSeek(const service::Extractor& extractor) {
    std::vector<TrackReport> video;
    std::vector<TrackReport> others;
    std::vector<TrackReport> failed;
    const size_t count = extractor.countTracks();
    for (size_t i = 0; i < count; ++i) {
        TrackReport track = describeTrack(extractor, i);
        if (track.formatFailure) {
            failed.push_back(std::move(track));
        } else if (isOfKind(track, "audio/")) {
            others.push_back(std::move(track));
        } else if (isOfKind(track, "video/") && video.empty()) {
            video.push_back(std::move(track));
        }
    }
    video.insert(video.end(), others.begin(), others.end());
    video.insert(video.end(), failed.begin(), failed.end());
    return video;
}

// A track and what its seek came to. Invariant: mTrack is set while it is started, and stopped
// before its buffers go.
class SeekableTrack {
  public:
    SeekableTrack(const service::Extractor& extractor, const TrackReport& report) {
        mLanding.track = report.index;
        mLanding.mime = stringEntry(report.format, AMEDIAFORMAT_KEY_MIME);
        mLanding.failure = report.formatFailure;
        if (!mLanding.failure) start(extractor);
    }
    SeekableTrack(const SeekableTrack&) = delete;
    SeekableTrack& operator=(const SeekableTrack&) = delete;
    ~SeekableTrack() {
        if (mTrack != nullptr) mTrack->stop();
    }

    const Landing& seek(const OpenedFile& file, int64_t atUs, SeekMode mode) {
        if (mTrack == nullptr) return mLanding;
        const uint64_t readsBefore = file.readCount();
        const service::ReadResult result =
            mTrack->read(android::SEEK | static_cast<uint32_t>(mode), atUs);
        mLanding.reads = file.readCount() - readsBefore;
        mLanding.endOfStream = result.status == AMEDIA_ERROR_END_OF_STREAM;
        if (result.status == AMEDIA_OK && result.buffer) {
            mLanding.sample = describeSample(0, result.buffer);
            mLanding.targetUs = result.buffer.metaData().getInt64(AMEDIAFORMAT_KEY_TARGET_TIME);
        } else if (result.status == AMEDIA_OK) {
            mLanding.failure = {"read gives no buffer after the seek", result.status};
        } else if (!mLanding.endOfStream) {
            mLanding.failure = {"read fails after the seek", result.status};
        }
        return mLanding;
    }

  private:
    void start(const service::Extractor& extractor) {
        std::unique_ptr<service::Track> track = extractor.track(mLanding.track);
        if (track == nullptr) {
            mLanding.failure = {"the plug-in gives no track object", std::nullopt};
            return;
        }
        const media_status_t status = track->start(mBuffers);
        if (status != AMEDIA_OK) {
            mLanding.failure = {"cannot be started", status};
            return;
        }
        mTrack = std::move(track);
    }

    Landing mLanding;
    service::BufferGroup mBuffers;
    std::unique_ptr<service::Track> mTrack;
};

std::optional<int64_t> timeOf(const Landing& landing) {
    return landing.sample ? landing.sample->timeUs : std::nullopt;
}

}  // namespace

std::vector<Landing> seekTracks(const OpenedFile& file, int64_t atUs, SeekMode mode) {
    const std::vector<TrackReport> reports = tracksToSeek(file.extractor());
    if (reports.empty()) throw FileError("has no video and no audio track");
    std::deque<SeekableTrack> tracks;  // all started before the first seek, as in a player
    for (const TrackReport& report : reports)
        tracks.emplace_back(file.extractor(), report);

    std::vector<Landing> landings;
    landings.reserve(tracks.size());
    for (SeekableTrack& track : tracks)
        landings.push_back(track.seek(file, atUs, mode));

    if (!isOfKind(reports.front(), "video/")) return landings;
    const std::optional<int64_t> videoUs = timeOf(landings.front());
    for (size_t i = 1; i < landings.size(); ++i) {
        const std::optional<int64_t> audioUs = timeOf(landings[i]);
        if (videoUs && audioUs) landings[i].differenceUs = *audioUs - *videoUs;
    }
    return landings;
}

}  // namespace avitool
