#pragma once

#include "foundation/date.h"
#include "reactions/stall.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace fleetwise {

/// The rules of the watchdog without its thread: tells stalls of the main thread from the moments
/// at which it was pinged and answered. Lengths of time are measured on the monotonic clock alone;
/// the wall clock only says when a stall began. Not thread-safe.
class StallDetector {
public:
    /// One moment on the three clocks.
    struct Moment {
        Seconds monotonic{0};  ///< since any fixed point
        Date wall;
        Seconds cpu{0};  ///< processor time of this process so far
    };

    enum class Continuation { newStall, ongoing };
    enum class SaveTime { whenDue, atTheEnd };

    static constexpr Seconds threshold{2};      ///< a wait of this length is a stall
    static constexpr Seconds saveInterval{60};  ///< at least this long from one save to the next
    static constexpr std::size_t maximumStalls = 20;

    explicit StallDetector(std::vector<Stall> stored);

    /// To be called every second. Whether a ping is to be sent to the main thread now; none is
    /// while one is outstanding. An outstanding one that has waited long enough counts as a stall
    /// already, so that a hang without end is recorded too.
    bool ping(const Moment& now, std::int64_t sessions);

    /// The main thread runs the ping that was sent last.
    void answer(const Moment& now, std::int64_t sessions);

    /// Oldest first, at most maximumStalls.
    const std::vector<Stall>& stalls() const { return recorded; }

    /// Whether the stalls changed since they were saved last and, unless it is the end, a save is
    /// due. They count as saved from then on.
    bool takeSave(Seconds monotonicNow, SaveTime time);

    /// The save could not be done: it will be due again after the interval.
    void saveFailed() { isUnsaved = true; }

    /// The list with the stall taken in: an ongoing one is the last entry grown, which keeps the
    /// moment it began and never shrinks; any other is appended. Beyond maximumStalls the oldest
    /// go.
    static std::vector<Stall> merge(std::vector<Stall> stalls, Stall stall, Continuation kind);

private:
    void record(const Moment& now, std::int64_t sessions);

    std::vector<Stall> recorded;
    std::optional<Moment> outstanding;  ///< when the unanswered ping was sent
    std::optional<Moment> ongoing;      ///< when the stall began that the last entry is of
    std::optional<Seconds> lastSave;
    bool isUnsaved = false;
};

}  // namespace fleetwise
