#pragma once

#include "usage/usage_history_store.h"

#include <optional>

namespace fleetwise {

/// A reset of the five-hour window that is worth telling: a real drop by at least ten points,
/// within one window length. Rises, ties, the first look, samples of the future, drops over a gap
/// longer than the window (the machine slept) are none. Each reset is told once, whatever source
/// shows it.
class WindowResetWatch {
public:
    static constexpr int leastDrop = leastResetDrop;  ///< percent points

    /// The five-hour values of the account in use, ascending by date, of this pass. The percent
    /// that the window stood at before, where one was reset since the last call.
    /// `toldEnd` is the end that the server told of the window: a fall before it, by what was told
    /// at the last call, is the figure of another account.
    std::optional<int> observe(const QuotaValues& fiveHour, const std::optional<std::string>& org,
                               Date now, std::optional<Date> toldEnd = {});

private:
    std::optional<std::pair<Date, int>> last;  ///< the latest value seen
    std::optional<std::string> lastOrg;
    std::optional<Date> lastToldEnd;
    std::optional<Date> toldAt;  ///< moment of the reset told last
};

}  // namespace fleetwise
