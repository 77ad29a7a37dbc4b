#pragma once

#include <functional>
#include <memory>
#include <string>

namespace fleetwise {

enum class PowerAssertionType {
    systemSleep,   ///< the machine does not go to sleep
    displaySleep,  ///< the screen neither blanks nor locks
};

/// Holds the machine awake until it is destroyed, or the program ends in whatever way.
class PowerAssertion {
public:
    PowerAssertion() = default;
    PowerAssertion(const PowerAssertion&) = delete;
    PowerAssertion& operator=(const PowerAssertion&) = delete;
    virtual ~PowerAssertion() = default;
};

/// Takes power assertions of the system. Main thread only; no call waits for the system.
class PowerAssertions {
public:
    /// Null where the system refused, or is not there.
    using Taken = std::function<void(std::unique_ptr<PowerAssertion>)>;

    PowerAssertions() = default;
    PowerAssertions(const PowerAssertions&) = delete;
    PowerAssertions& operator=(const PowerAssertions&) = delete;
    virtual ~PowerAssertions() = default;

    /// `reason` is what the system shows for it. `taken` is called once, not before this returns;
    /// not at all once this is destroyed.
    virtual void take(PowerAssertionType type, const std::string& reason, Taken taken) = 0;
};

}  // namespace fleetwise
