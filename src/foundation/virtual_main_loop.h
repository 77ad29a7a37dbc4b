#pragma once

#include "foundation/main_loop.h"

#include <deque>
#include <list>
#include <memory>
#include <string>

namespace fleetwise {

/// A main loop on a clock of its own, which only moves when it is told to: nothing runs but within
/// `run`, `advance` and `finishBackground`. One thread.
class VirtualMainLoop final : public MainLoop {
public:
    explicit VirtualMainLoop(Date start);
    ~VirtualMainLoop() override;

    Date now() const override { return clock; }
    void post(Action action) override { posted.push_back(std::move(action)); }
    std::unique_ptr<Subscription> every(Seconds interval, Action action) override;
    std::unique_ptr<Subscription> after(Seconds delay, Action action) override;
    void background(Action job, Action then) override;
    std::unique_ptr<Subscription> watchDirectory(const std::string& directory,
                                                 Action changed) override;

    /// Runs what was posted, and what that posts.
    void run();

    /// Lets the time pass, with all timers that fall due, in their order.
    void advance(Seconds time);

    /// How many background jobs were begun and are not finished.
    std::size_t backgroundJobs() const { return jobs.size(); }

    /// Runs the background jobs that were begun so far, and what follows them; those that these
    /// begin are not run. Gives how many it ran.
    std::size_t finishBackground();

    /// Tells the watches of a folder that it changed.
    void change(const std::string& directory);

private:
    struct Timer {
        Date due;
        Seconds interval{0};  ///< 0: only once
        Action action;
    };
    struct Watch {
        std::string directory;
        Action changed;
    };
    struct Job {
        Action job;
        Action then;
    };
    class TimerSubscription;
    class WatchSubscription;

    std::shared_ptr<Timer> nextDue(Date until) const;

    Date clock;
    std::deque<Action> posted;
    std::deque<Job> jobs;
    std::list<std::shared_ptr<Timer>> timers;
    std::list<std::shared_ptr<Watch>> watches;
};

}  // namespace fleetwise
