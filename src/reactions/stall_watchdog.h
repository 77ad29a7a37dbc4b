#pragma once

#include "reactions/stall.h"
#include "reactions/stall_detector.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace fleetwise {

/// Notices when the main thread stops answering and keeps the latest 20 stalls in a file. It pings
/// the main thread every second from a thread of its own; StallDetector has the rules.
class StallWatchdog {
public:
    using Post = std::function<void(std::function<void()>)>;
    using Clock = std::function<StallDetector::Moment()>;

    /// Reads the stalls stored at `path` (see loadStalls); with an empty path they are kept in
    /// memory only. `post` runs a function on the main thread, soon and without waiting for it; it
    /// is called from the watchdog's thread until this is destroyed, and what it was given may
    /// still run, or be dropped, afterwards. `clock` is called from both threads.
    StallWatchdog(std::string path, Post post, Clock clock = machineMoment);
    StallWatchdog(const StallWatchdog&) = delete;
    StallWatchdog& operator=(const StallWatchdog&) = delete;

    /// Writes what was not written yet, on the watchdog's thread, and waits for that.
    ~StallWatchdog();

    /// Begins to ping, at once. To be called once.
    void start();

    /// How many sessions are watched, for the stalls to come. Any thread.
    void setSessions(std::size_t count);

    /// Oldest first. Any thread.
    std::vector<Stall> stalls() const;

    /// Now on the clocks of this machine. The monotonic one goes on at its own pace whatever
    /// happens to the wall clock; on Linux it does not count the machine's sleep, which therefore
    /// is no stall.
    static StallDetector::Moment machineMoment();

    /// User and system time of this process; 0 where the system does not tell.
    static Seconds cpuSeconds();

private:
    /// What pings share that may still wait at the main thread when the watchdog is gone.
    struct Shared {
        explicit Shared(std::vector<Stall> stored) : detector(std::move(stored)) {}

        mutable std::mutex lock;
        StallDetector detector;     ///< guarded by `lock`
        std::int64_t sessions = 0;  ///< guarded by `lock`
    };

    void work();
    void ping();
    void save(StallDetector::SaveTime time);

    std::string file;
    Post postToMain;
    Clock clock;
    std::shared_ptr<Shared> shared;
    std::mutex stopLock;
    std::condition_variable stopped;
    bool isStopping = false;  ///< guarded by `stopLock`
    std::thread thread;
};

}  // namespace fleetwise
