#include "foundation/virtual_main_loop.h"

#include <algorithm>

namespace fleetwise {

/// A timer that ends with it, even while its own action runs.
class VirtualMainLoop::TimerSubscription final : public Subscription {
public:
    TimerSubscription(std::list<std::shared_ptr<Timer>>& givenTimers,
                      std::shared_ptr<Timer> givenTimer)
        : timers(givenTimers), timer(std::move(givenTimer)) {
        timers.push_back(timer);
    }
    ~TimerSubscription() override { timers.remove(timer); }

private:
    std::list<std::shared_ptr<Timer>>& timers;
    std::shared_ptr<Timer> timer;
};

class VirtualMainLoop::WatchSubscription final : public Subscription {
public:
    WatchSubscription(std::list<std::shared_ptr<Watch>>& givenWatches,
                      std::shared_ptr<Watch> givenWatch)
        : watches(givenWatches), watch(std::move(givenWatch)) {
        watches.push_back(watch);
    }
    ~WatchSubscription() override { watches.remove(watch); }

private:
    std::list<std::shared_ptr<Watch>>& watches;
    std::shared_ptr<Watch> watch;
};

VirtualMainLoop::VirtualMainLoop(Date start) : clock(start) {}

VirtualMainLoop::~VirtualMainLoop() = default;

std::unique_ptr<MainLoop::Subscription> VirtualMainLoop::every(Seconds interval, Action action) {
    auto timer = std::make_shared<Timer>(Timer{clock + interval, interval, std::move(action)});
    return std::make_unique<TimerSubscription>(timers, std::move(timer));
}

std::unique_ptr<MainLoop::Subscription> VirtualMainLoop::after(Seconds delay, Action action) {
    auto timer = std::make_shared<Timer>(Timer{clock + delay, Seconds(0), std::move(action)});
    return std::make_unique<TimerSubscription>(timers, std::move(timer));
}

void VirtualMainLoop::background(Action job, Action then) {
    jobs.push_back({std::move(job), std::move(then)});
}

std::unique_ptr<MainLoop::Subscription> VirtualMainLoop::watchDirectory(
    const std::string& directory, Action changed) {
    return std::make_unique<WatchSubscription>(
        watches, std::make_shared<Watch>(Watch{directory, std::move(changed)}));
}

void VirtualMainLoop::run() {
    while (!posted.empty()) {
        const Action action = std::move(posted.front());
        posted.pop_front();
        action();
    }
}

std::shared_ptr<VirtualMainLoop::Timer> VirtualMainLoop::nextDue(Date until) const {
    const auto next = std::min_element(
        timers.begin(), timers.end(),
        [](const auto& left, const auto& right) { return left->due < right->due; });
    return next == timers.end() || (*next)->due > until ? nullptr : *next;
}

void VirtualMainLoop::advance(Seconds time) {
    const Date end = clock + time;
    run();
    while (const auto timer = nextDue(end)) {
        clock = timer->due;
        if (timer->interval > Seconds(0)) {
            timer->due += timer->interval;
        } else {
            timers.remove(timer);
        }
        timer->action();
        run();
    }
    clock = end;
}

std::size_t VirtualMainLoop::finishBackground() {
    const std::deque<Job> begun = std::exchange(jobs, {});
    for (const Job& job : begun) {
        job.job();
        job.then();
        run();
    }
    return begun.size();
}

void VirtualMainLoop::change(const std::string& directory) {
    for (const auto& watch : std::list(watches)) {
        if (watch->directory == directory) watch->changed();
    }
    run();
}

}  // namespace fleetwise
