#include "platform/job_pool.h"

namespace fleetwise {

namespace {

constexpr std::size_t maximumThreads = 4;

}  // namespace

JobPool::~JobPool() {
    std::deque<Job> dropped;
    {
        const std::lock_guard guard(mutex);
        isStopping = true;
        dropped.swap(waiting);
    }
    changed.notify_all();
    for (std::thread& thread : threads)
        thread.join();
}

void JobPool::post(Job job) {
    const std::lock_guard guard(mutex);
    if (isStopping) return;
    waiting.push_back(std::move(job));
    if (idle < waiting.size() && threads.size() < maximumThreads)
        threads.emplace_back([this] { work(); });
    changed.notify_one();
}

void JobPool::work() {
    std::unique_lock lock(mutex);
    while (true) {
        ++idle;
        changed.wait(lock, [this] { return isStopping || !waiting.empty(); });
        --idle;
        if (waiting.empty()) return;
        Job job = std::move(waiting.front());
        waiting.pop_front();
        lock.unlock();
        job();
        // What the job holds ends with it, not with the next one's beginning.
        job = nullptr;
        lock.lock();
    }
}

}  // namespace fleetwise
