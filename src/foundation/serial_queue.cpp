#include "foundation/serial_queue.h"

namespace fleetwise {

SerialQueue::~SerialQueue() {
    {
        const std::lock_guard guard(mutex);
        isStopping = true;
    }
    changed.notify_all();
    if (thread.joinable()) thread.join();
}

void SerialQueue::post(std::function<void()> job) {
    const std::lock_guard guard(mutex);
    jobs.push_back(std::move(job));
    if (!thread.joinable()) thread = std::thread([this] { work(); });
    changed.notify_all();
}

void SerialQueue::drain() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return jobs.empty() && !isBusy; });
}

void SerialQueue::work() {
    std::unique_lock lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return isStopping || !jobs.empty(); });
        if (jobs.empty()) return;
        const std::function<void()> job = std::move(jobs.front());
        jobs.pop_front();
        isBusy = true;
        lock.unlock();
        job();
        lock.lock();
        isBusy = false;
        changed.notify_all();
    }
}

}  // namespace fleetwise
