#pragma once

#include "session/session_agent.h"
#include "usage/claude_configuration.h"
#include "usage/codex_quota.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Which plans the user's accounts are on. What the agents do not name is unknown and not guessed.
class PlanStore {
public:
    struct Plan {
        SessionAgent agent;
        std::optional<std::string> name;               ///< "Max 20x", "Pro", "Plus"
        std::optional<bool> hasOverage;                ///< extra usage is enabled
        std::optional<std::int64_t> creditMinorUnits;  ///< balance in hundredths of the currency
        std::optional<std::string> currency;           ///< ISO 4217
        bool isFlatRate = false;
        bool hasUnlimitedCredits = false;

        bool operator==(const Plan&) const = default;
    };

    /// One per agent that tells anything of its plan: Claude Code, then Codex.
    static std::vector<Plan> plans(const ClaudeConfiguration& claude,
                                   const std::optional<CodexLimits>& codex);
};

}  // namespace fleetwise
