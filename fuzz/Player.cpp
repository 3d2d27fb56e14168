// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Player.h"

#include <cutils/properties.h>

#include <algorithm>
#include <utility>

#include "fuzz/Finding.h"
#include "fuzz/Playing.h"

namespace avifuzz {

namespace service = android::service;
using service::Extractor;

namespace {

constexpr size_t kMostTracksAsked = 8;
constexpr size_t kMostSources = 12;
constexpr size_t kMostReads = 300;  // of one track to its end
constexpr size_t kMostReadsAnOrder = 16;
constexpr size_t kReadsAfterSeek = 2;
constexpr uint32_t kSeekModes = 8;  // the low three bits; five have a name

void askTracks(const Extractor& extractor, uint32_t flags) {
    const size_t count = extractor.countTracks();
    for (size_t i = 0; i <= std::min(count, kMostTracksAsked); ++i)
        extractor.trackMetaData(i, flags).format.toString();
}

void askOne(const Extractor& extractor, unsigned what) {
    switch (what % 6) {
        case 0:
            extractor.metaData().format.toString();
            break;
        case 1:
            extractor.countTracks();
            break;
        case 2:
            askTracks(extractor, 0);
            break;
        case 3:
            askTracks(extractor, Extractor::kIncludeExtensiveMetaData);
            break;
        case 4:
            extractor.flags();
            break;
        default:
            extractor.name();
            break;
    }
}

void seek(Playing* track, Orders* orders) {
    const unsigned order = orders->byte();
    const bool nonBlocking = order / kSeekModes % 4 == 0;
    const uint32_t options =
        android::SEEK | order % kSeekModes | (nonBlocking ? uint32_t{android::NONBLOCKING} : 0);
    if (track->read(options, orders->number())) track->readOn(kReadsAfterSeek);
}

}  // namespace

Player::Player(const service::PluginLibrary& plugin, service::DataSource& source)
    : mPlugin(plugin), mSource(source) {}

Player::~Player() {
    close(false);
}

void Player::setSwitches(unsigned bits) {
    property_set("vendor.ruvo.avi.extract.log", (bits & 1) != 0 ? "1" : "0");
    property_set("vendor.ruvo.avi.verbose.log", (bits & 2) != 0 ? "1" : "0");
    property_set("vendor.ruvo.avi.disable.audio", (bits & 4) != 0 ? "1" : "0");
}

bool Player::open() {
    mExtractor = Extractor::open(mPlugin, mSource);
    return mExtractor != nullptr;
}

void Player::query(unsigned first) const {
    constexpr unsigned kQueries = 6;
    for (unsigned i = 0; i < kQueries; ++i)
        askOne(*mExtractor, first % kQueries + i);
}

void Player::addTrack(size_t index) {
    if (mTracks.size() >= kMostSources) return;
    std::unique_ptr<service::Track> track = mExtractor->track(index);
    if (track == nullptr) {
        if (index < mExtractor->countTracks()) finding("no source of track %zu", index);
        return;
    }
    mTracks.push_back(std::make_unique<Playing>(std::move(track)));
}

void Player::startTracks() {
    const size_t count = std::min(mExtractor->countTracks(), kMostTracksAsked);
    for (size_t i = 0; i < count; ++i)
        addTrack(i);
    for (const auto& track : mTracks)
        track->start();
}

Playing* Player::chosen(Orders* orders) {
    return mTracks.empty() ? nullptr : mTracks[orders->below(mTracks.size())].get();
}

void Player::obey(Orders* orders) {
    while (!orders->isEmpty())
        obeyOne(orders);
}

void Player::obeyOne(Orders* orders) {
    const unsigned kind = orders->byte() % 16u;
    if (kind == 10 && mExtractor != nullptr) return addTrack(orders->byte());
    if (kind == 11) return ask(orders);
    if (kind == 12) return reopen(orders);
    Playing* track = chosen(orders);
    if (track == nullptr) return;
    if (kind < 4) return track->readOn(1 + orders->below(kMostReadsAnOrder));
    if (kind < 8) return seek(track, orders);
    if (kind == 8) return track->isStarted() ? track->stop() : track->start();
    if (kind == 9) return removeTrack(orders);
    if (kind == 13) return track->ask();
    if (kind == 14) return track->giveBack();
    track->read(0, 0, true);
}

void Player::removeTrack(Orders* orders) {
    const size_t number = orders->below(mTracks.size());
    if (orders->flag()) mTracks[number]->stop();
    mTracks.erase(mTracks.begin() + static_cast<std::ptrdiff_t>(number));
}

// Sources of the former extractor, which goes with the last of them, are read on.
void Player::reopen(Orders* orders) {
    setSwitches(orders->byte());
    if (!open()) return;
    if (orders->flag()) startTracks();
}

void Player::ask(Orders* orders) {
    if (mExtractor == nullptr) return;
    const unsigned what = orders->byte();
    askOne(*mExtractor, what);
    if (what != UINT8_MAX) return;
    const uint8_t token[] = {1, 2, 3};
    mExtractor->setMediaCas(token, sizeof(token));
}

void Player::readThrough() {
    for (const auto& track : mTracks)
        track->readOn(kMostReads);
}

void Player::close(bool backwards) {
    if (backwards) std::reverse(mTracks.begin(), mTracks.end());
    while (!mTracks.empty())
        mTracks.erase(mTracks.begin());
    mExtractor.reset();
}

}  // namespace avifuzz
