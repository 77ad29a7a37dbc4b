#pragma once

namespace fleetwise {

/// While this lives, a toolkit that finds no display ends the process with exit status 1 and a
/// message that names what works without one, instead of crashing it.
class DisplayCheck {
public:
    DisplayCheck();
    DisplayCheck(const DisplayCheck&) = delete;
    DisplayCheck& operator=(const DisplayCheck&) = delete;
    ~DisplayCheck();
};

}  // namespace fleetwise
