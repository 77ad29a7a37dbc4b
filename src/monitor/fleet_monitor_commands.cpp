// What the user does to the list.

#include "cost/prompt_text.h"
#include "fleet/federations.h"
#include "localisation/localisation.h"
#include "monitor/fleet_monitor.h"

#include <algorithm>

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

void FleetMonitor::toggleFavorite(const std::string& id) {
    change(Settings::favoriteSessionIds,
           toggled(environment.settings.get(Settings::favoriteSessionIds), id));
}

void FleetMonitor::setSearch(const std::string& search) {
    searchText = search;
    if (regroup()) notify(&Observer::fleetChanged);
}

void FleetMonitor::dismiss(const std::string& id) {
    const Session* found = session(id);
    if (found == nullptr) return;
    if (cannotBeDismissed(*found)) {
        setNotice(id, localised("Läuft noch und bleibt in der Liste"_text));
        return;
    }
    auto dismissed = environment.settings.get(Settings::dismissedSessionIds);
    if (!contains(dismissed, id)) dismissed.push_back(id);
    change(Settings::dismissedSessionIds, dismissed);
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

void FleetMonitor::toggleNotifying(const std::string& id) {
    const Session* found = session(id);
    if (found == nullptr) return;
    using Anchor = NotificationPolicy::Anchor;
    // The list may become another one with each change.
    const Session meant = *found;
    const bool wanted = !mayNotify(meant);
    setNotifyOverride(Anchor::session, id, {});
    if (mayNotify(meant) != wanted) setNotifyOverride(Anchor::session, id, wanted);
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
    const std::weak_ptr<bool> alive = aliveToken;
    runInBackground(
        environment.loop,
        [places = environment.hook, now = environment.loop.now()] {
            return HookInstaller::install(places, now);
        },
        [this, alive](const tl::expected<SettingsBackup, InstallError>& backup) {
            if (alive.expired()) return;
            hookFailure = backup ? std::string() : installErrorText(backup.error());
            notify(&Observer::hookChanged);
            refresh();
        });
}

}  // namespace fleetwise
