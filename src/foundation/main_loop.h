#pragma once

#include "foundation/date.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace fleetwise {

/// The thread that owns the model and the interface: what it is asked to do it does one after the
/// other. All but `post` belongs to that thread, and every action given here runs on it.
class MainLoop {
public:
    /// What goes on until it is destroyed, also by its own action; no action of it runs afterwards.
    class Subscription {
    public:
        Subscription() = default;
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;
        virtual ~Subscription() = default;
    };
    using Action = std::function<void()>;

    MainLoop() = default;
    MainLoop(const MainLoop&) = delete;
    MainLoop& operator=(const MainLoop&) = delete;
    virtual ~MainLoop() = default;

    virtual Date now() const = 0;

    /// Runs `action` soon, after what was posted before. Any thread. What is still waiting when
    /// the loop ends is dropped.
    virtual void post(Action action) = 0;

    /// Runs `action` again and again, the first time after one interval.
    [[nodiscard]] virtual std::unique_ptr<Subscription> every(Seconds interval, Action action) = 0;

    /// Runs `action` once.
    [[nodiscard]] virtual std::unique_ptr<Subscription> after(Seconds delay, Action action) = 0;

    /// Runs `job` on another thread, then `then` on this one. A job that has begun is waited for
    /// when the loop is destroyed; its `then` is dropped.
    virtual void background(Action job, Action then) = 0;

    /// Runs `changed` after entries of the folder were added, removed, replaced or written to. A
    /// folder that is missing, or goes and comes again, is watched as soon as it is there. Where
    /// the system cannot watch, nothing is ever told.
    [[nodiscard]] virtual std::unique_ptr<Subscription> watchDirectory(const std::string& directory,
                                                                       Action changed) = 0;
};

/// `background` with a value: `job` makes it on the other thread, `then` takes it on this one.
template <typename Job, typename Then>
void runInBackground(MainLoop& loop, Job job, Then then) {
    using Value = decltype(job());
    const auto value = std::make_shared<std::unique_ptr<Value>>();
    loop.background([value, job = std::move(job)] { *value = std::make_unique<Value>(job()); },
                    [value, then = std::move(then)] { then(std::move(**value)); });
}

}  // namespace fleetwise
