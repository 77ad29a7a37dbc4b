#pragma once

#include "foundation/main_loop.h"
#include "platform/job_pool.h"

#include <memory>

namespace fleetwise {

/// The main loop as Qt's event loop of the thread it was made on. It needs an application object,
/// which outlives it, and outlives all subscriptions.
///
/// An action of `after` never runs too early. Where nobody can tell the difference (from one second
/// on) timers may be late by a twentieth, so that the machine wakes for several of them at once.
class QtMainLoop final : public MainLoop {
public:
    QtMainLoop();
    ~QtMainLoop() override;

    Date now() const override { return currentDate(); }
    void post(Action action) override;
    std::unique_ptr<Subscription> every(Seconds interval, Action action) override;
    std::unique_ptr<Subscription> after(Seconds delay, Action action) override;
    void background(Action job, Action then) override;
    std::unique_ptr<Subscription> watchDirectory(const std::string& directory,
                                                 Action changed) override;

private:
    struct Timer;
    class Receiver;
    class TimerSubscription;

    std::unique_ptr<Receiver> receiver;
    JobPool jobs;  ///< ends before the receiver, which its jobs post to
};

}  // namespace fleetwise
