#include "hook/alarm.h"

#include <sys/time.h>

#include <csignal>

namespace fleetwise::hook {

namespace {

void setTimer(std::chrono::milliseconds time, std::chrono::milliseconds interval) {
    const auto timeValue = [](std::chrono::milliseconds value) {
        return ::timeval{.tv_sec = value.count() / 1000,
                         .tv_usec = static_cast<suseconds_t>(value.count() % 1000 * 1000)};
    };
    const ::itimerval timer{.it_interval = timeValue(interval), .it_value = timeValue(time)};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

Alarm::Alarm(std::chrono::milliseconds time) {
    struct ::sigaction action {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &action, nullptr);
    // Whoever started this program may have blocked the signal.
    ::sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGALRM);
    ::sigprocmask(SIG_UNBLOCK, &signals, nullptr);
    setTimer(time, std::chrono::milliseconds(100));
}

Alarm::~Alarm() {
    setTimer({}, {});
}

}  // namespace fleetwise::hook
