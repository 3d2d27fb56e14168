// SPDX-License-Identifier: Apache-2.0
#include "service/Track.h"

#include <cstdlib>
#include <utility>

namespace android::service {

Track::Track(CMediaTrack* track, std::shared_ptr<void> owner)
    : mOwner(std::move(owner)), mTrack(track) {}

Track::~Track() {
    mTrack->free(mTrack->data);
    std::free(mTrack);  // the plug-in takes the record from malloc and leaves it to its user
}

media_status_t Track::start(BufferGroup& group) {
    return mTrack->start(mTrack->data, group.plain());
}

media_status_t Track::stop() {
    return mTrack->stop(mTrack->data);
}

FormatResult Track::getFormat() const {
    FormatResult result;
    result.status = mTrack->getFormat(mTrack->data, result.format.get());
    return result;
}

ReadResult Track::read(uint32_t options, int64_t seekPosUs) {
    CMediaBuffer* buffer = nullptr;
    const media_status_t status = mTrack->read(mTrack->data, &buffer, options, seekPosUs);
    return {status, BufferHandle(buffer)};
}

bool Track::supportsNonBlockingRead() const {
    return mTrack->supportsNonBlockingRead(mTrack->data);
}

}  // namespace android::service
