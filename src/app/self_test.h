#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

enum class CheckOutcome {
    passed,
    failed,
    noted,  ///< the machine's own condition, which is no fault of the program
};

struct CheckResult {
    CheckOutcome outcome = CheckOutcome::passed;
    std::string reason;  ///< empty where it passed
};

/// One thing that the self-test looks at.
struct Check {
    std::string_view name;
    std::function<CheckResult()> run;
};

/// Gathers what one check finds wrong.
class Faults {
public:
    void expect(bool holds, std::string_view fault);

    /// Passed where there was no fault, else failed for all of them.
    CheckResult result() const;

private:
    std::string found;
};

/// The outcome of the self-test, as it is printed: a line for each check and one that counts them.
/// German whatever the interface language, as the report is.
struct SelfTest {
    std::string text;
    bool hasPassed = false;  ///< no check failed

    static SelfTest run(const std::vector<Check>& checks);
};

}  // namespace fleetwise
