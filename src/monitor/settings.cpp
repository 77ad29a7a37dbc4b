#include "monitor/settings.h"

#include <algorithm>
#include <optional>

namespace fleetwise {

namespace {

constexpr double secondsPerMinute = 60;
constexpr double secondsPerDay = 86'400;

std::set<std::string> asSet(const Settings::Strings& texts) {
    return {texts.begin(), texts.end()};
}

template <typename Value>
std::pair<std::string, Json> registered(const Setting<Value>& setting) {
    return {std::string(setting.key), setting.fallback};
}

/// The value with this raw name among `all`.
template <typename Values>
std::optional<typename Values::value_type> named(const Values& all, std::string_view raw) {
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const auto value) { return rawValue(value) == raw; });
    if (found == all.end()) return {};
    return *found;
}

}  // namespace

Settings::Settings(UserDefaults& givenDefaults) : defaults(givenDefaults) {
    const auto registered = registeredDefaults();
    defaults.registerDefaults({registered.begin(), registered.end()});
}

std::vector<std::pair<std::string, Json>> Settings::registeredDefaults() {
    return {
        registered(notificationsEnabled),
        registered(isMuted),
        registered(hideDockIcon),
        registered(showDormant),
        registered(dormantRetentionDays),
        registered(groupMode),
        registered(density),
        registered(sortMode),
        registered(language),
        registered(showIntroAtLaunch),
        registered(appearanceMode),
        registered(doneGraceMinutes),
        registered(usageShowsQuota),
        registered(usageShowsTokens),
        registered(usageShowsMoney),
        registered(doneSound),
        registered(waitingSound),
        registered(windowResetSound),
        registered(markShowsWorking),
        registered(markShowsFiveHour),
        registered(markShowsSevenDay),
        registered(markShowsReset),
    };
}

std::vector<std::string> Settings::keys() {
    const auto inOrder = [](const auto&... settings) {
        return std::vector<std::string>{std::string(settings.key)...};
    };
    return inOrder(groupMode, sortMode, activeFilters, density, summarizeSelfDriven, showDormant,
                   dormantRetentionDays, doneGraceMinutes, showsCodex, dismissedSessionIds,
                   favoriteSessionIds, language, appearanceMode, hideDockIcon, showIntroAtLaunch,
                   didCompleteOnboarding, didSetInitialWindowSize, didAdoptPreviousNameSettings,
                   terminalPath, windowGeometry, showsDetails, detailsWidth, archiveGeometry,
                   settingsGeometry, feedURL, notificationsEnabled, isMuted, notifyingStates,
                   newSessionsNotify, sessionNotifyOverrides, notifiesWindowReset, doneSound,
                   waitingSound, windowResetSound, stateActions, webhookURL, staysAwake,
                   sparesFocusedSession, costDisplay, moneyBasis, usageShowsQuota, usageShowsTokens,
                   usageShowsMoney, usagePinned, usageGeometry, accountNames, ownGoals,
                   markShowsWorking, markShowsFiveHour, markShowsSevenDay, markShowsReset);
}

bool Settings::isStored(std::string_view key) const {
    return defaults.isStored(std::string(key));
}

bool Settings::get(const Setting<bool>& setting) const {
    return defaults.boolean(std::string(setting.key)).value_or(setting.fallback);
}

std::int64_t Settings::get(const Setting<std::int64_t>& setting) const {
    return defaults.integer(std::string(setting.key)).value_or(setting.fallback);
}

std::string Settings::get(const Setting<std::string_view>& setting) const {
    return isStored(setting.key) ? defaults.string(std::string(setting.key))
                                 : std::string(setting.fallback);
}

Settings::Strings Settings::get(const Setting<Strings>& setting) const {
    return isStored(setting.key) ? defaults.strings(std::string(setting.key)) : setting.fallback;
}

Json Settings::get(const Setting<Json>& setting) const {
    Json value = defaults.value(std::string(setting.key));
    if (value.type() == setting.fallback.type()) return value;
    // A store that keeps text only hands back text.
    const auto parsed = value.is_string() ? parseJson(value.get<std::string>()) : std::nullopt;
    return parsed && parsed->type() == setting.fallback.type() ? *parsed : setting.fallback;
}

FleetSnapshot::Input Settings::snapshotInput() const {
    FleetSnapshot::Input input;
    const std::int64_t days = get(dormantRetentionDays);
    if (!get(showDormant)) {
        input.dormantMaxAge = Seconds(0);
    } else if (days >= 1) {
        input.dormantMaxAge = Seconds(static_cast<double>(days) * secondsPerDay);
    }
    input.dismissed = asSet(get(dismissedSessionIds));
    input.keepRegardlessOfAge = asSet(get(favoriteSessionIds));
    const std::int64_t minutes = get(doneGraceMinutes);
    input.doneGracePeriod = Seconds(
        static_cast<double>(minutes < 0 ? doneGraceMinutes.fallback : minutes) * secondsPerMinute);
    input.includeStats = true;
    input.showsCodex = get(showsCodex);
    return input;
}

ListRules Settings::listRules() const {
    ListRules rules;
    rules.groupMode = named(allGroupModes, get(groupMode)).value_or(GroupMode::status);
    rules.sortMode = named(allSortModes, get(sortMode)).value_or(SortMode::status);
    for (const std::string& raw : get(activeFilters)) {
        if (const auto filter = named(allListFilters, raw)) rules.filters.insert(*filter);
    }
    rules.summarizesSelfDriven = get(summarizeSelfDriven);
    return rules;
}

std::set<SessionState> Settings::storedNotifyingStates() const {
    std::set<SessionState> states;
    for (const std::string& raw : get(notifyingStates)) {
        if (const auto state = sessionStateFrom(raw)) states.insert(*state);
    }
    return states;
}

NotificationPolicy::Overrides Settings::notifyOverrides() const {
    NotificationPolicy::Overrides overrides;
    const Json choices = get(sessionNotifyOverrides);
    for (const auto& [key, value] : choices.items()) {
        if (value.is_boolean()) overrides.emplace(key, value.get<bool>());
    }
    return overrides;
}

ReactionRules Settings::reactionRules() const {
    return {
        .notificationsEnabled = get(notificationsEnabled),
        .isMuted = get(isMuted),
        .notifyingStates = storedNotifyingStates(),
        .overrides = notifyOverrides(),
        .newSessionsNotify = get(newSessionsNotify),
        .summarizesSelfDriven = get(summarizeSelfDriven),
        .sparesFocusedSession = get(sparesFocusedSession),
        .doneSound = get(doneSound),
        .waitingSound = get(waitingSound),
        .stateActions = StateAction::decode(defaults.value(std::string(stateActions.key))),
        .webhookURL = get(webhookURL),
        .staysAwake = get(staysAwake),
    };
}

void Settings::adoptSettingsFromPreviousName(const UserDefaults& earlier) {
    if (get(didAdoptPreviousNameSettings)) return;
    for (const std::string& key : keys()) {
        const Json value = earlier.value(key);
        if (!value.is_null() && !defaults.isStored(key)) defaults.set(key, value);
    }
    set(didAdoptPreviousNameSettings, true);
}

}  // namespace fleetwise
