#pragma once

#include <chrono>

namespace fleetwise::hook {

/// After the given time, and again ten times a second, interrupts a system call that waits: it
/// fails with EINTR. Ends with its scope; there is one at a time.
class Alarm {
public:
    explicit Alarm(std::chrono::milliseconds time);
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;
    ~Alarm();
};

}  // namespace fleetwise::hook
