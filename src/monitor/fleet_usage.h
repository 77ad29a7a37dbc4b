#pragma once

#include "fleet/session.h"
#include "monitor/settings.h"
#include "reactions/notifier.h"
#include "reactions/sound_player.h"
#include "usage/own_goals.h"
#include "usage/usage_overview.h"
#include "usage/window_reset_watch.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Keeps quota, plans and goals up to date beside the list of sessions, and has resets and reached
/// limits announced. Main thread only.
class FleetUsage {
public:
    using Input = UsageCollector::Input;

    struct Environment {
        Settings& settings;
        Notifier& notifier;
        SoundPlayer& sounds;
        Calendar calendar = nullptr;
    };

    explicit FleetUsage(Environment givenEnvironment);

    /// What the next pass is to collect, while these sessions are listed.
    Input input(const Prices::Book& book, const std::vector<Session>& sessions) const;

    /// Takes what a pass collected, and announces a reset of the five-hour window. Whether
    /// anything that is shown differs.
    bool adopt(UsageOverview collected);

    /// Announces own limits that sessions have reached, each once. `cost` gives what a session has
    /// cost in US dollars.
    void announceBreaches(const std::vector<Session>& sessions,
                          const std::function<std::optional<double>(const std::string&)>& cost);

    const UsageOverview& overview() const { return current; }
    OwnGoals& ownGoals() { return own; }
    const OwnGoals& ownGoals() const { return own; }

    /// The session's goal: the user's own, else Codex's. `tokensUsed` counts for the own one.
    std::optional<GoalStore::Goal> goal(const std::string& sessionId,
                                        std::int64_t tokensUsed) const;

private:
    bool mayNotify() const;
    void watchForReset(const UsageOverview& collected);

    Environment environment;
    UsageOverview current;
    OwnGoals own;
    WindowResetWatch resets;
};

}  // namespace fleetwise
