#include "reactions/stall_watchdog.h"

#include <sys/resource.h>

#include <chrono>
#include <utility>

namespace fleetwise {

namespace {

constexpr auto pingInterval = std::chrono::seconds(1);

Seconds secondsOf(const ::timeval& time) {
    return Seconds(static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6);
}

}  // namespace

StallWatchdog::StallWatchdog(std::string path, Post post, Clock givenClock)
    : file(std::move(path)),
      postToMain(std::move(post)),
      clock(std::move(givenClock)),
      shared(std::make_shared<Shared>(file.empty() ? std::vector<Stall>() : loadStalls(file))) {}

StallWatchdog::~StallWatchdog() {
    {
        const std::lock_guard guard(stopLock);
        isStopping = true;
    }
    stopped.notify_all();
    if (thread.joinable()) thread.join();
}

void StallWatchdog::start() {
    thread = std::thread([this] { work(); });
}

void StallWatchdog::setSessions(std::size_t count) {
    const std::lock_guard guard(shared->lock);
    shared->sessions = static_cast<std::int64_t>(count);
}

std::vector<Stall> StallWatchdog::stalls() const {
    const std::lock_guard guard(shared->lock);
    return shared->detector.stalls();
}

void StallWatchdog::work() {
    std::unique_lock guard(stopLock);
    while (!isStopping) {
        guard.unlock();
        ping();
        save(StallDetector::SaveTime::whenDue);
        guard.lock();
        stopped.wait_for(guard, pingInterval, [this] { return isStopping; });
    }
    guard.unlock();
    save(StallDetector::SaveTime::atTheEnd);
}

void StallWatchdog::ping() {
    const StallDetector::Moment now = clock();
    {
        const std::lock_guard guard(shared->lock);
        if (!shared->detector.ping(now, shared->sessions)) return;
    }
    postToMain([answered = std::weak_ptr(shared), clockOfAnswer = clock] {
        const auto state = answered.lock();
        if (!state) return;
        const StallDetector::Moment answeredAt = clockOfAnswer();
        const std::lock_guard guard(state->lock);
        state->detector.answer(answeredAt, state->sessions);
    });
}

void StallWatchdog::save(StallDetector::SaveTime time) {
    if (file.empty()) return;
    const StallDetector::Moment now = clock();
    std::vector<Stall> stalls;
    {
        const std::lock_guard guard(shared->lock);
        if (!shared->detector.takeSave(now.monotonic, time)) return;
        stalls = shared->detector.stalls();
    }
    if (saveStalls(file, stalls)) return;
    const std::lock_guard guard(shared->lock);
    shared->detector.saveFailed();
}

StallDetector::Moment StallWatchdog::machineMoment() {
    return {.monotonic = std::chrono::steady_clock::now().time_since_epoch(),
            .wall = currentDate(),
            .cpu = cpuSeconds()};
}

Seconds StallWatchdog::cpuSeconds() {
    ::rusage usage{};
    if (::getrusage(RUSAGE_SELF, &usage) != 0) return Seconds(0);
    return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}

}  // namespace fleetwise
