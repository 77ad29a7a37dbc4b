#include "reactions/stall_detector.h"

#include <algorithm>
#include <utility>

namespace fleetwise {

StallDetector::StallDetector(std::vector<Stall> stored) : recorded(std::move(stored)) {}

bool StallDetector::ping(const Moment& now, std::int64_t sessions) {
    if (!outstanding) {
        outstanding = now;
        return true;
    }
    if (now.monotonic - outstanding->monotonic >= threshold) record(now, sessions);
    return false;
}

void StallDetector::answer(const Moment& now, std::int64_t sessions) {
    if (!outstanding) return;
    if (now.monotonic - outstanding->monotonic >= threshold) {
        record(now, sessions);
    } else {
        ongoing.reset();
    }
    outstanding.reset();
}

void StallDetector::record(const Moment& now, std::int64_t sessions) {
    const auto kind = ongoing ? Continuation::ongoing : Continuation::newStall;
    // A ping that is late right after a late one belongs to the same stall, from its beginning on.
    if (!ongoing) ongoing = outstanding;
    const Stall stall{.at = ongoing->wall,
                      .seconds = now.monotonic - ongoing->monotonic,
                      .sessions = sessions,
                      .cpu = std::max(now.cpu - ongoing->cpu, Seconds(0))};
    recorded = merge(std::move(recorded), stall, kind);
    isUnsaved = true;
}

bool StallDetector::takeSave(Seconds monotonicNow, SaveTime time) {
    const bool isDue = !lastSave || monotonicNow - *lastSave >= saveInterval;
    if (!isUnsaved || (time == SaveTime::whenDue && !isDue)) return false;
    lastSave = monotonicNow;
    isUnsaved = false;
    return true;
}

std::vector<Stall> StallDetector::merge(std::vector<Stall> stalls, Stall stall, Continuation kind) {
    if (kind == Continuation::ongoing && !stalls.empty()) {
        Stall& last = stalls.back();
        last.seconds = std::max(last.seconds, stall.seconds);
        last.sessions = std::max(last.sessions, stall.sessions);
        last.cpu = std::max(last.cpu, stall.cpu);
    } else {
        stalls.push_back(stall);
    }
    if (stalls.size() > maximumStalls) {
        const auto surplus = static_cast<std::ptrdiff_t>(stalls.size() - maximumStalls);
        stalls.erase(stalls.begin(), stalls.begin() + surplus);
    }
    return stalls;
}

}  // namespace fleetwise
