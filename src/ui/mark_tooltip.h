#pragma once

#include "foundation/date.h"

#include <optional>
#include <string>

namespace fleetwise {

/// What the mark's tooltip tells.
struct MarkTooltip {
    /// One of the two quota windows.
    struct Window {
        double used = 0;               ///< share of the quota, 1 is all of it
        std::optional<Seconds> until;  ///< the time until it starts anew

        bool operator==(const Window&) const = default;
    };

    int working = 0;
    int attention = 0;  ///< sessions that wait for the user
    std::optional<Window> fiveHour;
    std::optional<Window> sevenDay;

    bool operator==(const MarkTooltip&) const = default;
};

/// In the interface language: "Fleetwise: 3 arbeiten, 1 braucht dich" and a line for each quota
/// that is known: "5 h: 42 %, noch 1 h 50 min".
std::string markTooltip(const MarkTooltip& tooltip);

}  // namespace fleetwise
