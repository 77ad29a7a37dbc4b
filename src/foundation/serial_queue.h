#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace fleetwise {

/// Runs jobs one after the other, in order, on a thread of its own that starts with the first
/// job. Destruction finishes the jobs that were posted. Any thread may post.
class SerialQueue {
public:
    SerialQueue() = default;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    ~SerialQueue();

    void post(std::function<void()> job);

    /// Returns when every job posted so far has run. Not to be called from a job.
    void drain();

private:
    void work();

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> jobs;  ///< guarded by `mutex`
    bool isBusy = false;                     ///< guarded by `mutex`
    bool isStopping = false;                 ///< guarded by `mutex`
    std::thread thread;                      ///< guarded by `mutex`
};

}  // namespace fleetwise
