#include "platform/qt_main_loop.h"

#include "platform/directory_watcher.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>
#include <deque>
#include <map>
#include <mutex>

namespace fleetwise {

namespace {

using std::chrono::steady_clock;

/// Rounded up, within what a timer of the system takes: from 1 ms to three weeks.
int timerMilliseconds(Seconds length) {
    constexpr double longest = 21.0 * 86'400 * 1000;
    return static_cast<int>(std::clamp(std::ceil(length.count() * 1000), 1.0, longest));
}

Qt::TimerType timerType(int milliseconds) {
    return milliseconds < 1000 ? Qt::PreciseTimer : Qt::CoarseTimer;
}

}  // namespace

struct QtMainLoop::Timer {
    enum class Kind { repeating, once };

    Kind kind = Kind::once;
    Seconds length{0};
    Action action;
    steady_clock::time_point due;  ///< of a timer that runs once
    int id = 0;                    ///< the system's; 0: it does not run
};

/// Where events of the main thread arrive: one for each posted action, and those of the timers.
class QtMainLoop::Receiver final : public QObject {
public:
    /// The event is posted under the lock, so that what was posted first arrives first.
    void post(Action action) {
        const std::lock_guard guard(mutex);
        posted.push_back(std::move(action));
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }

    void start(const std::shared_ptr<Timer>& timer) {
        timer->due =
            steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(timer->length);
        arm(timer, timer->length);
    }

    void stop(Timer& timer) {
        if (timer.id == 0) return;
        killTimer(timer.id);
        timers.erase(std::exchange(timer.id, 0));
    }

protected:
    void customEvent(QEvent*) override {
        const Action action = takePosted();
        action();
    }

    void timerEvent(QTimerEvent* event) override {
        const auto found = timers.find(event->timerId());
        if (found == timers.end()) return;
        // Held here, since the action may end its own subscription.
        const std::shared_ptr<Timer> timer = found->second;
        if (timer->kind == Timer::Kind::once) stop(*timer);
        const Seconds left = timer->due - steady_clock::now();
        if (timer->kind == Timer::Kind::once && left > Seconds(0)) {
            arm(timer, left);
        } else {
            timer->action();
        }
    }

private:
    Action takePosted() {
        const std::lock_guard guard(mutex);
        Action action = std::move(posted.front());
        posted.pop_front();
        return action;
    }

    void arm(const std::shared_ptr<Timer>& timer, Seconds length) {
        const int milliseconds = timerMilliseconds(length);
        timer->id = startTimer(milliseconds, timerType(milliseconds));
        if (timer->id != 0) timers[timer->id] = timer;
    }

    std::mutex mutex;
    std::deque<Action> posted;                     ///< guarded by `mutex`
    std::map<int, std::shared_ptr<Timer>> timers;  ///< that run, by the system's id
};

class QtMainLoop::TimerSubscription final : public Subscription {
public:
    TimerSubscription(Receiver& givenReceiver, Timer::Kind kind, Seconds length, Action action)
        : receiver(givenReceiver), timer(std::make_shared<Timer>()) {
        timer->kind = kind;
        timer->length = length;
        timer->action = std::move(action);
        receiver.start(timer);
    }
    ~TimerSubscription() override { receiver.stop(*timer); }

private:
    Receiver& receiver;
    std::shared_ptr<Timer> timer;
};

QtMainLoop::QtMainLoop() : receiver(std::make_unique<Receiver>()) {}

QtMainLoop::~QtMainLoop() = default;

void QtMainLoop::post(Action action) {
    receiver->post(std::move(action));
}

std::unique_ptr<MainLoop::Subscription> QtMainLoop::every(Seconds interval, Action action) {
    return std::make_unique<TimerSubscription>(*receiver, Timer::Kind::repeating, interval,
                                               std::move(action));
}

std::unique_ptr<MainLoop::Subscription> QtMainLoop::after(Seconds delay, Action action) {
    return std::make_unique<TimerSubscription>(*receiver, Timer::Kind::once, delay,
                                               std::move(action));
}

void QtMainLoop::background(Action job, Action then) {
    jobs.post([this, job = std::move(job), then = std::move(then)]() mutable {
        job();
        job = nullptr;
        receiver->post(std::move(then));
    });
}

std::unique_ptr<MainLoop::Subscription> QtMainLoop::watchDirectory(const std::string& directory,
                                                                   Action changed) {
    return startDirectoryWatcher(*this, directory, std::move(changed));
}

}  // namespace fleetwise
