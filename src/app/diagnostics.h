#pragma once

#include "app/language_choice.h"
#include "cost/session_cost.h"
#include "fleet/fleet_snapshot.h"
#include "reactions/reaction_rules.h"
#include "reactions/stall.h"
#include "usage/usage_overview.h"

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Everything that the diagnostic report tells.
struct Diagnostics {
    Date now;
    Calendar calendar = nullptr;
    std::string home;  ///< shown as "~" in paths

    std::string registryDirectory;
    std::string statusDirectory;
    std::string desktopDirectory;
    std::string codexDirectory;
    bool hooksInstalled = false;
    bool hookIsCurrent = true;

    LanguageChoice language;

    bool watchesFolders = true;  ///< or the system's limit of watches is reached

    double firstMilliseconds = 0;  ///< of the first pass
    double warmMilliseconds = 0;   ///< of a second pass right after it
    std::vector<FleetSnapshot::Timing> timings;
    std::vector<Stall> stalls;  ///< oldest first

    FleetSnapshot::Collection collection;

    SessionCosts costs;
    Prices::Book prices = Prices::Book::builtIn();
    std::optional<Prices::Verdict> priceVerdict;  ///< of all sessions together

    UsageOverview usage;
    Json ownGoals = Json::object();  ///< the setting `ownGoals`

    ReactionRules reactions;
    std::string terminal;                ///< the setting `terminalPath`
    std::vector<std::string> terminals;  ///< those found, in the order they are tried
};

/// The report as it is printed. Its own words are German whatever the interface language, so that
/// a report reads the same on every machine.
std::string diagnosticReport(const Diagnostics& diagnostics);

}  // namespace fleetwise
