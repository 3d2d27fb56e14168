// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/extract/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace avitool {

namespace {

constexpr std::chrono::milliseconds kPatience(1000);
constexpr std::chrono::milliseconds kPeriod(100);

// How much is done: a bar and a percentage.
std::string barText(int64_t timeUs, int64_t durationUs) {
    constexpr size_t kBarWidth = 40;
    const double part = std::clamp(
        static_cast<double>(timeUs) / static_cast<double>(std::max<int64_t>(durationUs, 1)), 0.0,
        1.0);
    const auto filled = static_cast<size_t>(part * kBarWidth);
    return fmt::format("[{}{}] {:3.0f} %", std::string(filled, '#'),
                       std::string(kBarWidth - filled, '-'), part * 100);
}

}  // namespace

Progress::Progress(bool wanted)
    : mShown(wanted && isatty(STDERR_FILENO) != 0), mNext(Clock::now() + kPatience) {}

void Progress::beginTrack(size_t track, int64_t durationUs) {
    mTrack = track;
    mDurationUs = durationUs;
}

void Progress::update(int64_t timeUs, uint64_t bytes) {
    constexpr uint64_t kBytesPerMegabyte = 1000000;
    if (!mShown || Clock::now() < mNext) return;
    mNext = Clock::now() + kPeriod;
    show(fmt::format("track {} {}", mTrack,
                     mDurationUs > 0 ? barText(timeUs, mDurationUs)
                                     : fmt::format("{} MB", bytes / kBytesPerMegabyte)));
}

void Progress::show(const std::string& line) {
    const size_t rest = mWidth > line.size() ? mWidth - line.size() : 0;
    const std::string text = "\r" + line + std::string(rest, ' ');
    std::fputs(text.c_str(), stderr);
    std::fflush(stderr);
    mWidth = line.size();
}

void Progress::clear() {
    if (mWidth == 0) return;
    show("");
    std::fputs("\r", stderr);
}

}  // namespace avitool
