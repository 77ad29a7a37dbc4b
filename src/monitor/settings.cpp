#include "monitor/settings.h"

namespace fleetwise {

namespace {

constexpr double secondsPerMinute = 60;
constexpr double secondsPerDay = 86'400;

std::set<std::string> asSet(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

}  // namespace

Settings::Settings(UserDefaults& givenDefaults) : defaults(givenDefaults) {
    const auto registered = registeredDefaults();
    defaults.registerDefaults({registered.begin(), registered.end()});
}

std::vector<std::pair<std::string, Json>> Settings::registeredDefaults() {
    return {
        {"notificationsEnabled", true},
        {"isMuted", false},
        {"hideDockIcon", false},
        {"showDormant", true},
        {"dormantRetentionDays", 1},
        {"groupMode", "status"},
        {"density", "compact"},
        {"sortMode", "status"},
        {"language", "system"},
        {"showIntroAtLaunch", true},
        {"appearanceMode", "system"},
        {"doneGraceMinutes", 30},
        {"usageShowsQuota", true},
        {"usageShowsTokens", true},
        {"usageShowsMoney", true},
        {"doneSound", "—"},  // the name of no sound: silent until one is chosen
        {"waitingSound", "—"},
        {"windowResetSound", "—"},
        {"markShowsWorking", true},
        {"markShowsFiveHour", true},
        {"markShowsSevenDay", true},
        {"markShowsReset", false},
    };
}

FleetSnapshot::Input Settings::snapshotInput() const {
    FleetSnapshot::Input input;
    const std::int64_t days = defaults.integer("dormantRetentionDays");
    if (!defaults.boolean("showDormant")) {
        input.dormantMaxAge = Seconds(0);
    } else if (days >= 1) {
        input.dormantMaxAge = Seconds(static_cast<double>(days) * secondsPerDay);
    }
    input.dismissed = asSet(defaults.strings("dismissedSessionIds"));
    input.keepRegardlessOfAge = asSet(defaults.strings("favoriteSessionIds"));
    input.doneGracePeriod =
        Seconds(static_cast<double>(defaults.integer("doneGraceMinutes")) * secondsPerMinute);
    input.includeStats = true;
    // Not registered: Codex is shown until the user says otherwise.
    input.showsCodex = defaults.value("showsCodex").is_null() || defaults.boolean("showsCodex");
    return input;
}

std::string Settings::language() const {
    return defaults.string("language");
}

}  // namespace fleetwise
