#pragma once

#include "cost/cost_figures.h"
#include "monitor/settings.h"

#include <string_view>

namespace fleetwise {

/// What is shown of costs.
struct CostDisplay {
    enum class Extent {
        sessions,  ///< at every session, group and total
        totals,    ///< at groups and totals only
        nothing,
    };

    Extent extent = Extent::sessions;
    MoneyBasis basis = MoneyBasis::billed;

    bool operator==(const CostDisplay&) const = default;
};

/// As the user has chosen; a name that is not known counts as not set.
inline CostDisplay costDisplay(const Settings& settings) {
    const std::string chosen = settings.get(Settings::costDisplay);
    CostDisplay display{.basis = moneyBasisFrom(settings.get(Settings::moneyBasis))};
    if (chosen == "total") display.extent = CostDisplay::Extent::totals;
    if (chosen == "off") display.extent = CostDisplay::Extent::nothing;
    return display;
}

}  // namespace fleetwise
