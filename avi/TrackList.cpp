// SPDX-License-Identifier: Apache-2.0
#include "TrackList.h"

#include <algorithm>

#include "support/Log.h"

namespace android {

Track* TrackList::byPosition(size_t index) const {
    return index < mTracks.size() ? mTracks[index].get() : nullptr;
}

Track* TrackList::add(uint32_t streamNumber) {
    ++mChanges;
    mTracks.push_back(std::make_unique<Track>());
    Track* track = mTracks.back().get();
    track->info.mStreamIndex = streamNumber;
    if (streamNumber >= mByStream.size()) mByStream.resize(streamNumber + 1, nullptr);
    Track*& slot = mByStream[streamNumber];
    if (slot == nullptr) slot = track;
    return track;
}

void TrackList::drop(Track* track) {
    ++mChanges;
    Track*& slot = mByStream[track->info.mStreamIndex];
    if (slot == track) slot = nullptr;
    const auto holds = [track](const std::unique_ptr<Track>& held) { return held.get() == track; };
    // Only the newest track is ever dropped: it stands at the end, or in front when it is video.
    const bool isLast = holds(mTracks.back());
    mTracks.erase(isLast ? mTracks.end() - 1 : std::find_if(mTracks.begin(), mTracks.end(), holds));
}

void TrackList::putVideoFirst(const Track* track) {
    if (!track->mIsVideo || mTracks.front()->mIsVideo) return;
    const auto place = std::find_if(mTracks.begin(), mTracks.end(),
                                    [track](const auto& held) { return held.get() == track; });
    std::rotate(mTracks.begin(), place, place + 1);
    AVI_LOGD("%s(): Put video track on the front.", "parseSTRF");
}

}  // namespace android
