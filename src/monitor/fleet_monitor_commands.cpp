// What the user does to the list.

#include "cost/prompt_text.h"
#include "fleet/federations.h"
#include "localisation/localisation.h"
#include "monitor/fleet_monitor.h"

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

constexpr Seconds noticeTime{10};

bool contains(const Settings::Strings& ids, const std::string& id) {
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

/// Puts an element in, or takes it out where it is.
Settings::Strings toggled(Settings::Strings elements, const std::string& element) {
    if (std::erase(elements, element) == 0) elements.push_back(element);
    return elements;
}

/// Whether passes list the session even when it was removed: it may have a question.
bool cannotBeDismissed(const Session& session) {
    return session.isLive && (session.pid || session.agent.isCodex());
}

}  // namespace

void FleetMonitor::applyUserMarks(std::vector<Session>& sessions) const {
    const FleetSnapshot::Input wishes = environment.settings.snapshotInput();
    std::erase_if(sessions, [&](const Session& session) {
        return wishes.dismissed.contains(session.id) && !cannotBeDismissed(session);
    });
    for (Session& session : sessions)
        session.isFavorite = wishes.keepRegardlessOfAge.contains(session.id);
    std::stable_sort(sessions.begin(), sessions.end(), Session::precedes);
}

void FleetMonitor::listChanged() {
    std::vector<Session> sessions = list;
    applyUserMarks(sessions);
    publish(std::move(sessions));
}

void FleetMonitor::settingsChanged() {
    overrides = environment.settings.notifyOverrides();
    notify(&Observer::settingsChanged);
    listChanged();
    if (hasCollected()) refresh();
}

void FleetMonitor::toggleFilter(ListFilter filter) {
    change(Settings::activeFilters, toggled(environment.settings.get(Settings::activeFilters),
                                            std::string(rawValue(filter))));
}

std::vector<Session> FleetMonitor::listed(const std::vector<std::string>& ids) const {
    std::vector<Session> meant;
    for (const std::string& id : ids) {
        if (const Session* found = session(id)) meant.push_back(*found);
    }
    return meant;
}

void FleetMonitor::toggleFavorites(const std::vector<std::string>& ids) {
    const auto meant = listed(ids);
    const bool arePinned = std::ranges::all_of(meant, &Session::isFavorite);
    auto favourites = environment.settings.get(Settings::favoriteSessionIds);
    for (const Session& session : meant) {
        std::erase(favourites, session.id);
        if (!arePinned) favourites.push_back(session.id);
    }
    change(Settings::favoriteSessionIds, favourites);
}

void FleetMonitor::setSearch(const std::string& search) {
    searchText = search;
    if (regroup()) notify(&Observer::fleetChanged);
}

void FleetMonitor::dismissAll(const std::vector<std::string>& ids) {
    auto dismissed = environment.settings.get(Settings::dismissedSessionIds);
    const auto meant = listed(ids);
    std::vector<std::string> staying;
    for (const Session& session : meant) {
        if (cannotBeDismissed(session)) {
            staying.push_back(session.id);
        } else if (!contains(dismissed, session.id)) {
            dismissed.push_back(session.id);
        }
    }
    if (staying.size() < meant.size()) change(Settings::dismissedSessionIds, dismissed);
    for (const std::string& id : staying)
        setNotice(id, localised("Läuft noch und bleibt in der Liste"_text));
}

void FleetMonitor::clearDismissed() {
    change(Settings::dismissedSessionIds, {});
}

void FleetMonitor::focus(const std::string& id) {
    carryOut(id, environment.focus);
}

void FleetMonitor::resume(const std::string& id) {
    carryOut(id, environment.resume);
}

void FleetMonitor::activate(const std::string& id) {
    const Session* found = session(id);
    if (found == nullptr) return;
    if (found->isLive) {
        focus(id);
    } else {
        resume(id);
    }
}

std::optional<std::string> FleetMonitor::resumeText(const std::string& id) {
    const Session* found = session(id);
    if (found == nullptr) return {};
    auto text = environment.resumeText(*found);
    if (text) return *std::move(text);
    setNotice(id, text.error());
    return {};
}

tl::expected<void, std::string> FleetMonitor::resumePast(const Session& past) {
    return environment.resume(past);
}

tl::expected<std::string, std::string> FleetMonitor::resumeTextOfPast(const Session& past) const {
    return environment.resumeText(past);
}

void FleetMonitor::readDetails(const std::string& id,
                               std::function<void(const SessionDetails&)> then) {
    const Session* found = session(id);
    if (found == nullptr) return;
    const std::weak_ptr<bool> alive = aliveToken;
    runInBackground(
        environment.loop, [read = environment.readDetails, asked = *found] { return read(asked); },
        [this, alive, id, then = std::move(then)](const SessionDetails& details) {
            if (!alive.expired() && session(id) != nullptr) then(details);
        });
}

void FleetMonitor::answerNotification(const std::string& id, NotificationAction action) {
    const Session* found = session(id);
    const bool isLive = found != nullptr && found->isLive;
    // The notification may be older than what has become of the session since.
    if (isLive && action != NotificationAction::open) {
        focus(id);
    } else if (action == NotificationAction::resume) {
        resume(id);
    } else {
        requestSession(id);
        return;
    }
    if (found == nullptr || notice(id)) requestSession(id);
}

std::optional<bool> FleetMonitor::notifyOverride(NotificationPolicy::Anchor anchor,
                                                 const std::string& id) const {
    const Session* found = session(id);
    if (found == nullptr) return {};
    const auto key = NotificationPolicy::key(anchor, id, found->cwd);
    const auto choice = key ? overrides.find(*key) : overrides.end();
    if (choice == overrides.end()) return {};
    return choice->second;
}

void FleetMonitor::setNotifyOverride(NotificationPolicy::Anchor anchor, const std::string& id,
                                     std::optional<bool> notifies) {
    const Session* found = session(id);
    const auto key =
        found == nullptr ? std::nullopt : NotificationPolicy::key(anchor, id, found->cwd);
    if (!key) return;
    Json changed = environment.settings.get(Settings::sessionNotifyOverrides);
    if (notifies) {
        changed[*key] = *notifies;
    } else {
        changed.erase(*key);
    }
    change(Settings::sessionNotifyOverrides, changed);
}

bool FleetMonitor::mayNotify(const Session& session) const {
    return NotificationPolicy::notifies(session, overrides,
                                        environment.settings.get(Settings::newSessionsNotify));
}

void FleetMonitor::toggleNotifyingOf(const std::vector<std::string>& ids) {
    const auto meant = listed(ids);
    const bool wanted =
        std::ranges::none_of(meant, [this](const Session& session) { return mayNotify(session); });
    const bool isPreset = environment.settings.get(Settings::newSessionsNotify);
    Json changed = environment.settings.get(Settings::sessionNotifyOverrides);
    NotificationPolicy::Overrides others = overrides;
    for (const Session& session : meant) {
        const auto key =
            NotificationPolicy::key(NotificationPolicy::Anchor::session, session.id, session.cwd);
        if (!key) continue;
        changed.erase(*key);
        others.erase(*key);
        // A choice of its own only where what holds without it is not what is wanted.
        if (NotificationPolicy::notifies(session, others, isPreset) != wanted) {
            changed[*key] = wanted;
        }
    }
    change(Settings::sessionNotifyOverrides, changed);
}

void FleetMonitor::carryOut(
    const std::string& id,
    const std::function<tl::expected<void, std::string>(const Session&)>& operation) {
    const Session* found = session(id);
    if (found == nullptr) return;
    const bool hadNotice = notices.erase(id) > 0;
    const auto done = operation(*found);
    if (!done) {
        setNotice(id, done.error());
    } else if (hadNotice) {
        notify(&Observer::fleetChanged);
    }
}

void FleetMonitor::requestWindow() {
    notify(&Observer::windowRequested);
}

void FleetMonitor::requestSession(const std::string& id) {
    notify(&Observer::sessionRequested, id);
}

void FleetMonitor::setNotice(const std::string& id, std::string text) {
    auto expiry = environment.loop.after(noticeTime, [this, id] {
        notices.erase(id);
        notify(&Observer::fleetChanged);
    });
    notices.insert_or_assign(id, Notice{std::move(text), std::move(expiry)});
    notify(&Observer::fleetChanged);
}

std::optional<std::string> FleetMonitor::notice(const std::string& id) const {
    const auto found = notices.find(id);
    if (found == notices.end()) return {};
    return found->second.text;
}

std::string FleetMonitor::handoffMark(const std::string& id) const {
    return PromptText::federationMark(federationForHandoff(id, list));
}

void FleetMonitor::installHook() {
    changeHook(HookInstaller::install, HookState::installed);
}

void FleetMonitor::removeHook() {
    changeHook(HookInstaller::uninstall, HookState::missing);
}

void FleetMonitor::changeHook(HookChange howTo, HookState outcome) {
    if (std::exchange(hookIsChanging, true)) return;
    notify(&Observer::hookChanged);
    const std::weak_ptr<bool> alive = aliveToken;
    runInBackground(
        environment.loop,
        [howTo, places = environment.hook, now = environment.loop.now()] {
            return howTo(places, now);
        },
        [this, alive, outcome](const tl::expected<SettingsBackup, InstallError>& backup) {
            if (alive.expired()) return;
            hookFailure = backup ? std::string() : installErrorText(backup.error());
            hookIsChanging = false;
            if (backup) {
                hookIsOutdated = false;
                hook = outcome;
                passPrecedesHook = isCollecting;
            }
            notify(&Observer::hookChanged);
            refresh();
        });
}

}  // namespace fleetwise
