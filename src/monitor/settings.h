#pragma once

#include "fleet/fleet_snapshot.h"
#include "fleet/list_rules.h"
#include "foundation/user_defaults.h"
#include "reactions/reaction_rules.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace fleetwise {

/// A setting: its key in the user defaults and what it reads as while it was never written.
template <typename Value>
struct Setting {
    std::string_view key;
    Value fallback{};
};

/// The user's settings, by their keys in the user defaults. Belongs to the main thread.
class Settings {
public:
    using Strings = std::vector<std::string>;

    // The list.
    static constexpr Setting<std::string_view> groupMode{"groupMode", "status"};
    static constexpr Setting<std::string_view> sortMode{"sortMode", "status"};
    static inline const Setting<Strings> activeFilters{"activeFilters"};
    static constexpr Setting<std::string_view> density{"density", "compact"};
    static constexpr Setting<bool> summarizeSelfDriven{"summarizeSelfDriven", false};
    static constexpr Setting<bool> showDormant{"showDormant", true};
    static constexpr Setting<std::int64_t> dormantRetentionDays{"dormantRetentionDays", 1};
    static constexpr Setting<std::int64_t> doneGraceMinutes{"doneGraceMinutes", 30};
    static constexpr Setting<bool> showsCodex{"showsCodex", true};
    static inline const Setting<Strings> dismissedSessionIds{"dismissedSessionIds"};
    static inline const Setting<Strings> favoriteSessionIds{"favoriteSessionIds"};

    // The application.
    static constexpr Setting<std::string_view> language{"language", "system"};
    static constexpr Setting<std::string_view> appearanceMode{"appearanceMode", "system"};
    static constexpr Setting<bool> hideDockIcon{"hideDockIcon", false};
    static constexpr Setting<bool> showIntroAtLaunch{"showIntroAtLaunch", true};
    static constexpr Setting<bool> didCompleteOnboarding{"didCompleteOnboarding", false};
    static constexpr Setting<bool> didSetInitialWindowSize{"didSetInitialWindowSize", false};
    static constexpr Setting<bool> didAdoptPreviousNameSettings{"didAdoptPreviousNameSettings",
                                                                false};
    static constexpr Setting<std::string_view> terminalPath{"terminalPath", ""};
    /// Place and size of the main window, in the toolkit's form; empty at the first launch.
    static constexpr Setting<std::string_view> windowGeometry{"windowGeometry", ""};
    /// Whether the main window has the details of the selected session beside the list.
    static constexpr Setting<bool> showsDetails{"showsDetails", true};
    /// How wide these details are, in device-independent pixels; 0 until the user changes it.
    static constexpr Setting<std::int64_t> detailsWidth{"detailsWidth", 0};
    /// Places and sizes of these windows, in the toolkit's form; empty at their first opening.
    static constexpr Setting<std::string_view> archiveGeometry{"archiveGeometry", ""};
    static constexpr Setting<std::string_view> settingsGeometry{"settingsGeometry", ""};
    /// In place of the update feed's address that the program was built with; not in the interface.
    static constexpr Setting<std::string_view> feedURL{"feedURL", ""};

    // Reactions.
    static constexpr Setting<bool> notificationsEnabled{"notificationsEnabled", true};
    static constexpr Setting<bool> isMuted{"isMuted", false};
    static inline const Setting<Strings> notifyingStates{"notifyingStates",
                                                         {"decision", "waiting", "failed", "done"}};
    static constexpr Setting<bool> newSessionsNotify{"newSessionsNotify", true};
    static inline const Setting<Json> sessionNotifyOverrides{"sessionNotifyOverrides",
                                                             Json::object()};
    static constexpr Setting<bool> notifiesWindowReset{"notifiesWindowReset", true};
    /// "—" is the name of no sound: silent until one is chosen.
    static constexpr Setting<std::string_view> doneSound{"doneSound", "—"};
    static constexpr Setting<std::string_view> waitingSound{"waitingSound", "—"};
    static constexpr Setting<std::string_view> windowResetSound{"windowResetSound", "—"};
    static inline const Setting<Json> stateActions{"stateActions", Json::array()};
    static constexpr Setting<std::string_view> webhookURL{"webhookURL", ""};
    static constexpr Setting<bool> staysAwake{"staysAwake", false};
    static constexpr Setting<bool> sparesFocusedSession{"sparesFocusedSession", true};

    // Cost and usage.
    static constexpr Setting<std::string_view> costDisplay{"costDisplay", "session"};
    static constexpr Setting<std::string_view> moneyBasis{"moneyBasis", "billed"};
    static constexpr Setting<bool> usageShowsQuota{"usageShowsQuota", true};
    static constexpr Setting<bool> usageShowsTokens{"usageShowsTokens", true};
    static constexpr Setting<bool> usageShowsMoney{"usageShowsMoney", true};
    static constexpr Setting<bool> usagePinned{"usagePinned", false};
    /// Place and size of the usage window, in the toolkit's form; empty at its first opening.
    static constexpr Setting<std::string_view> usageGeometry{"usageGeometry", ""};
    /// Organisation to the name the user gave it.
    static inline const Setting<Json> accountNames{"accountNames", Json::object()};
    /// The user's own goals by session, see OwnGoals.
    static inline const Setting<Json> ownGoals{"ownGoals", Json::object()};

    // The mark.
    static constexpr Setting<bool> markShowsWorking{"markShowsWorking", true};
    static constexpr Setting<bool> markShowsFiveHour{"markShowsFiveHour", true};
    static constexpr Setting<bool> markShowsSevenDay{"markShowsSevenDay", true};
    static constexpr Setting<bool> markShowsReset{"markShowsReset", false};

    /// Registers the defaults of the settings with `defaults`, which must outlive this.
    explicit Settings(UserDefaults& defaults);

    /// The defaults that are registered, each key with the value that it reads as while it was
    /// never written, in a fixed order. The other settings have their fallback.
    static std::vector<std::pair<std::string, Json>> registeredDefaults();

    /// The keys of all settings, in the order they stand above.
    static std::vector<std::string> keys();

    /// The stored value; the setting's fallback where none was ever written or it is of another
    /// type.
    bool get(const Setting<bool>& setting) const;
    std::int64_t get(const Setting<std::int64_t>& setting) const;
    std::string get(const Setting<std::string_view>& setting) const;
    Strings get(const Setting<Strings>& setting) const;
    Json get(const Setting<Json>& setting) const;

    template <typename Value>
    void set(const Setting<Value>& setting, const std::type_identity_t<Value>& value) {
        defaults.set(std::string(setting.key), value);
    }

    /// What a collection pass is to do.
    FleetSnapshot::Input snapshotInput() const;

    /// What the list shows, but for the search. Names that are not known count as not set.
    ListRules listRules() const;

    /// The states the user wants to hear of; names that are not known are ignored.
    std::set<SessionState> storedNotifyingStates() const;

    /// The setting `sessionNotifyOverrides`; values that are neither true nor false are ignored.
    NotificationPolicy::Overrides notifyOverrides() const;

    /// What holds for reactions now.
    ReactionRules reactionRules() const;

    /// Once: takes over what is stored under the settings' keys in the store of the program's
    /// earlier name, where nothing stands yet.
    void adoptSettingsFromPreviousName(const UserDefaults& earlier);

private:
    bool isStored(std::string_view key) const;

    UserDefaults& defaults;
};

}  // namespace fleetwise
