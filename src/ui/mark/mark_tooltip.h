#pragma once

#include <string>
#include <vector>

namespace fleetwise {

/// What the mark's tooltip tells.
struct MarkTooltip {
    int working = 0;
    int attention = 0;               ///< sessions that wait for the user
    std::vector<std::string> quota;  ///< a line for each window

    bool operator==(const MarkTooltip&) const = default;
};

/// In the interface language: "Fleetwise: 3 arbeiten, 1 braucht dich", then the quota.
std::string markTooltip(const MarkTooltip& tooltip);

}  // namespace fleetwise
