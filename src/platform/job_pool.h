#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace fleetwise {

/// Runs jobs side by side on up to four threads of its own, which start when they are needed and
/// then stay; jobs mostly wait, for disks and servers, so a slow one does not hold up the others.
/// Destruction waits for the jobs that have begun and drops the rest. Any thread may post, also
/// from a job.
class JobPool {
public:
    using Job = std::function<void()>;

    JobPool() = default;
    JobPool(const JobPool&) = delete;
    JobPool& operator=(const JobPool&) = delete;
    ~JobPool();

    void post(Job job);

private:
    void work();

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Job> waiting;           ///< guarded by `mutex`
    std::vector<std::thread> threads;  ///< guarded by `mutex`
    std::size_t idle = 0;              ///< threads that wait for a job; guarded by `mutex`
    bool isStopping = false;           ///< guarded by `mutex`
};

}  // namespace fleetwise
