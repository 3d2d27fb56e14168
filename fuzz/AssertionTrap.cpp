// SPDX-License-Identifier: Apache-2.0
#include "fuzz/AssertionTrap.h"

#include <android/log.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

namespace avifuzz {

namespace {

// The assertions that a file can reach and that are meant to be there.
constexpr std::string_view kExpected[] = {
    // An index before the stream's format: the track has no type yet.
    "CHECK(AMediaFormat_getString(track->meta, AMEDIAFORMAT_KEY_MIME, &mime)) failed.",
    "CHECK(AMediaFormat_getString(mLastTrack->meta, AMEDIAFORMAT_KEY_MIME, &mime)) failed.",
    // A codec configuration with one of the four reserved or escaped sampling rates.
    "CHECK_LE( samplingFreqIndex,11u) failed:",
    // Units with short length prefixes, which grow beyond the buffer as they get start codes.
    "CHECK(dstOffset + 4 <= mBuffer->size()) failed.",
};

// Not strstr: libFuzzer takes what that looks for as words worth putting into inputs.
bool isExpected(std::string_view message) {
    for (const std::string_view text : kExpected) {
        const auto found = std::search(message.begin(), message.end(), text.begin(), text.end());
        if (found != message.end()) return true;
    }
    return false;
}

}  // namespace

// A detached thread that does one work after the other.
class AssertionTrap::Worker {
  public:
    Worker() {
        std::thread([this] { loop(); }).detach();
    }

    // Answers whether the work came to its end; if not, the thread is parked.
    bool run(std::function<void()> work) {
        std::unique_lock<std::mutex> lock(mLock);
        mWork = std::move(work);
        mState = State::kRunning;
        mChanged.notify_all();
        mChanged.wait(lock, [this] { return mState != State::kRunning; });
        return mState == State::kIdle;
    }

    // Ends the running work from within; never returns.
    [[noreturn]] void park() {
        setState(State::kParked);
        for (;;)
            pause();
    }

    static thread_local Worker* sCurrent;

  private:
    enum class State { kIdle, kRunning, kParked };

    [[noreturn]] void loop() {
        sCurrent = this;
        for (;;) {
            std::unique_lock<std::mutex> lock(mLock);
            mChanged.wait(lock, [this] { return mState == State::kRunning; });
            const std::function<void()> work = std::exchange(mWork, nullptr);
            lock.unlock();
            work();
            setState(State::kIdle);
        }
    }

    void setState(State state) {
        const std::lock_guard<std::mutex> lock(mLock);
        mState = state;
        mChanged.notify_all();
    }

    std::mutex mLock;
    std::condition_variable mChanged;
    std::function<void()> mWork;  // guarded by mLock
    State mState = State::kIdle;  // guarded by mLock
};

thread_local AssertionTrap::Worker* AssertionTrap::Worker::sCurrent = nullptr;

AssertionTrap::AssertionTrap() {
    __android_log_set_aborter(&AssertionTrap::onFatal);
}

void AssertionTrap::onFatal(const char* message) {
    if (Worker::sCurrent != nullptr && isExpected(message)) Worker::sCurrent->park();
    std::fprintf(stderr, "%s\n", message);
    std::abort();
}

bool AssertionTrap::run(std::function<void()> work) {
    if (!mIsReady) addWorker();
    mIsReady = mWorkers.back()->run(std::move(work));
    return mIsReady;
}

void AssertionTrap::addWorker() {
    // The fuzzer's alarm and its user's interrupt are for the main thread, which knows them.
    sigset_t blocked;
    sigset_t former;
    sigemptyset(&blocked);
    for (const int signal : {SIGALRM, SIGINT, SIGTERM, SIGUSR1, SIGUSR2})
        sigaddset(&blocked, signal);
    pthread_sigmask(SIG_BLOCK, &blocked, &former);
    mWorkers.push_back(new Worker);
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    mIsReady = true;
}

}  // namespace avifuzz
