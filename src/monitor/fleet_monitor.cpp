// The passes and what follows from them; what the user does is in fleet_monitor_commands.cpp.

#include "monitor/fleet_monitor.h"

#include "fleet/remembered_hosts.h"
#include "reactions/stall_watchdog.h"

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

constexpr Seconds secondsShown{60};  ///< running times below it show their seconds
constexpr Seconds shortStep{0.95};
constexpr Seconds longStep{4.95};
constexpr Seconds longestGap{0.5};
constexpr Seconds latePass{15};

constexpr bool asksSomething(SessionState state) {
    return state <= SessionState::failed;
}

std::size_t countOf(const std::vector<Session>& sessions, bool (*isMeant)(SessionState)) {
    return static_cast<std::size_t>(
        std::count_if(sessions.begin(), sessions.end(),
                      [&](const Session& session) { return isMeant(session.state); }));
}

/// Renews the installed program where it is not the one that came with this version.
bool isHookCurrent(const HookInstaller::Places& places) {
    if (!HookInstaller::isInstalled(places.settingsFile, places.installedHook)) return true;
    if (HookInstaller::isCurrent(places.bundledHook, places.installedHook)) return true;
    // A copy that cannot be renewed is told to be out of date and goes on working.
    return HookInstaller::installHookBinary(places.bundledHook, places.installedHook).has_value();
}

}  // namespace

struct FleetMonitor::Pass {
    FleetSnapshot::Collection collection;
    HookState hook = HookState::unknown;
    std::optional<UsageOverview> usage;  ///< of a whole pass
};

FleetMonitor::FleetMonitor(Environment givenEnvironment)
    : environment(std::move(givenEnvironment)),
      costs({.loop = environment.loop,
             .store = environment.costs,
             .calendar = environment.calendar,
             .costsChanged = [this] { notify(&Observer::costsChanged); },
             .progressChanged = [this] { notify(&Observer::costScanChanged); }}),
      fleetUsage({.settings = environment.settings,
                  .notifier = environment.notifier,
                  .sounds = environment.sounds,
                  .calendar = environment.calendar}),
      overrides(environment.settings.notifyOverrides()),
      shownTime(environment.loop.now()) {}

FleetMonitor::~FleetMonitor() = default;

void FleetMonitor::start() {
    environment.ensureStateDirectories();
    const auto& places = environment.hook;
    runInBackground(
        environment.loop, [places] { return isHookCurrent(places); },
        [this, alive = std::weak_ptr<bool>(aliveToken)](bool isCurrent) {
            if (alive.expired() || isCurrent) return;
            hookIsOutdated = true;
            notify(&Observer::hookChanged);
        });
    environment.watchdog.start();
    const auto refreshed = [this] { refresh(); };
    if (!refreshTimer) {
        refreshTimer = environment.loop.every(refreshInterval, refreshed);
        clockTimer = environment.loop.every(clockInterval, [this] { tick(); });
    }
    statusWatcher = environment.loop.watchDirectory(places.statusDir, refreshed);
    registryWatcher = environment.loop.watchDirectory(environment.sessionsDirectory, refreshed);
    refresh();
}

void FleetMonitor::refresh() {
    if (isCollecting || nextPassTimer) {
        wantsAnotherCollection = true;
        return;
    }
    isCollecting = true;
    runPass();
}

void FleetMonitor::runPass() {
    const std::weak_ptr<bool> alive = aliveToken;
    passBegan = environment.loop.now();
    FleetSnapshot::Input input = environment.settings.snapshotInput();
    input.isPreview = !isPreviewed;
    runInBackground(
        environment.loop,
        [collect = environment.collect, collectUsage = environment.collectUsage,
         input = std::move(input), usageInput = fleetUsage.input(costs.priceBook(), list),
         now = environment.loop.now(), settingsFile = environment.hook.settingsFile,
         installedHook = environment.hook.installedHook] {
            Pass pass{.collection = collect(input, now)};
            if (!input.isPreview) pass.usage = collectUsage(usageInput, now);
            const bool isInstalled = HookInstaller::isInstalled(settingsFile, installedHook);
            pass.hook = isInstalled ? HookState::installed : HookState::missing;
            return pass;
        },
        [this, alive](Pass pass) {
            if (!alive.expired()) finishPass(std::move(pass));
        });
}

void FleetMonitor::finishPass(Pass pass) {
    recheckTimer.reset();
    if (const auto wait = pass.collection.recheckIn) {
        recheckTimer = environment.loop.after(*wait, [this] { refresh(); });
    }
    if (!std::exchange(passPrecedesHook, false)) setHookState(pass.hook);
    if (std::exchange(isPreviewed, true)) {
        apply(std::move(pass.collection));
        if (pass.usage) applyUsage(*std::move(pass.usage));
    } else {
        applyPreview(std::move(pass.collection));
        wantsAnotherCollection = true;
    }
    isCollecting = false;
    noteLateness(false);
    if (!std::exchange(wantsAnotherCollection, false)) return;
    // In a storm of events passes would otherwise follow each other without a pause.
    const Seconds taken = std::max(Seconds(0), environment.loop.now() - passBegan);
    nextPassTimer = environment.loop.after(std::min(taken, longestGap), [this] {
        nextPassTimer.reset();
        wantsAnotherCollection = false;
        refresh();
    });
}

void FleetMonitor::noteLateness(bool isLate) {
    if (std::exchange(hasNotedLateness, isLate) != isLate) notify(&Observer::fleetChanged);
}

/// Nothing follows from a list that is not whole yet but that it can be seen.
void FleetMonitor::applyPreview(FleetSnapshot::Collection collection) {
    std::vector<Session>& sessions = collection.sessions;
    if (sessions.empty()) return;
    refreshedAt = environment.loop.now();
    applyUserMarks(sessions);
    fillRememberedHosts(sessions, environment.hosts.entries(refreshedAt));
    publish(std::move(sessions));
}

void FleetMonitor::apply(FleetSnapshot::Collection collection) {
    const Date now = environment.loop.now();
    refreshedAt = now;
    std::vector<Session>& sessions = collection.sessions;
    pruneDismissed(collection);
    adoptFederations(sessions);
    applyUserMarks(sessions);
    rememberHosts(sessions, now);
    environment.watchdog.setSessions(sessions.size());
    react(sessions, now);
    const bool differs = publish(std::move(sessions));
    costs.followPass(differs ? FleetCosts::News::some : FleetCosts::News::none,
                     environment.settings.get(Settings::showsCodex));
}

void FleetMonitor::adoptFederations(std::vector<Session>& sessions) {
    std::map<std::string, std::string> adopted;
    for (Session& session : sessions) {
        const auto known = federations.find(session.id);
        if (!session.federationId && known != federations.end()) {
            session.federationId = known->second;
        }
        if (session.federationId) adopted.emplace(session.id, *session.federationId);
    }
    federations = std::move(adopted);
}

void FleetMonitor::rememberHosts(std::vector<Session>& sessions, Date now) {
    std::vector<HostAppMemory::Sighting> sightings;
    for (const Session& session : sessions) {
        if (session.isLive) {
            sightings.push_back({session.id, session.hostApp, session.hostBundleId});
        }
    }
    environment.hosts.remember(sightings, now);
    fillRememberedHosts(sessions, environment.hosts.entries(now));
}

void FleetMonitor::react(const std::vector<Session>& sessions, Date now) {
    const ReactionRules rules = environment.settings.reactionRules();
    const auto transitions = enteredStates(sessions, previousStates, reactedTo);
    reactedTo = passBegan;
    const FleetChange change{.sessions = sessions,
                             .previousStates = previousStates,
                             .transitions = transitions,
                             .rules = rules,
                             .now = now};
    for (FleetReaction* reaction : environment.reactions)
        reaction->react(change);
    previousStates.clear();
    for (const Session& session : sessions)
        previousStates.emplace(session.id, session.state);
}

void FleetMonitor::pruneDismissed(const FleetSnapshot::Collection& collection) {
    std::set<std::string> present;
    for (const Session& session : collection.sessions)
        present.insert(session.id);
    auto dismissed = environment.settings.get(Settings::dismissedSessionIds);
    const auto isGone = [&](const std::string& id) {
        return collection.searchedEnded && !present.contains(id) &&
               !collection.leftOut.contains(id);
    };
    const auto hasComeToAsk = [&](const std::string& id) {
        const auto hidden = collection.leftOut.find(id);
        const auto before = previouslyLeftOut.find(id);
        return hidden != collection.leftOut.end() && asksSomething(hidden->second) &&
               before != previouslyLeftOut.end() && before->second != hidden->second;
    };
    const auto shownAgain = std::erase_if(dismissed, hasComeToAsk);
    const auto gone = std::erase_if(dismissed, isGone);
    previouslyLeftOut = collection.leftOut;
    if (shownAgain + gone == 0) return;
    environment.settings.set(Settings::dismissedSessionIds, dismissed);
    if (shownAgain > 0) wantsAnotherCollection = true;
}

bool FleetMonitor::publish(std::vector<Session> sessions) {
    const bool isFirst = std::exchange(hasPublished, true) == false;
    const bool differs = sessions != list;
    list = std::move(sessions);
    const bool isRegrouped = regroup();
    updateDockBadge();
    if (!isFirst && !differs && !isRegrouped) return false;
    // Running times are told anew with what they belong to.
    shownTime = environment.loop.now();
    notify(&Observer::fleetChanged);
    return differs;
}

void FleetMonitor::updateDockBadge() {
    const std::size_t count = attentionCount();
    if (std::exchange(dockBadge, count) != count) environment.showDockBadge(count);
}

bool FleetMonitor::regroup() {
    ListRules rules = environment.settings.listRules();
    rules.search = searchText;
    if (!searchText.empty()) rules.objectives = objectives();
    auto groups =
        buildGroups(list, rules, environment.loop.now(), environment.calendar, environment.home);
    const bool differs = groups != grouped;
    grouped = std::move(groups);
    return differs;
}

void FleetMonitor::setHookState(HookState state) {
    if (std::exchange(hook, state) != state) notify(&Observer::hookChanged);
}

void FleetMonitor::setVisibility(std::function<bool()> givenVisibility) {
    isAnyWindowVisible = std::move(givenVisibility);
}

Seconds FleetMonitor::clockStep(const std::vector<Session>& sessions, Date now) {
    const bool showsSeconds =
        std::any_of(sessions.begin(), sessions.end(), [&](const Session& session) {
            const auto since = session.elapsedReference();
            return since && now >= *since && now - *since < secondsShown;
        });
    return showsSeconds ? shortStep : longStep;
}

void FleetMonitor::tick() {
    if (isCollecting && environment.loop.now() - passBegan >= latePass) noteLateness(true);
    if (!isAnyWindowVisible || !isAnyWindowVisible()) return;
    const Date now = environment.loop.now();
    const bool isDue = now < shownTime || now - shownTime >= clockStep(list, now);
    if (!isDue) return;
    shownTime = now;
    notify(&Observer::clockTicked);
}

void FleetMonitor::addObserver(Observer& observer) {
    observers.push_back(&observer);
}

void FleetMonitor::removeObserver(Observer& observer) {
    std::erase(observers, &observer);
}

const Session* FleetMonitor::session(const std::string& id) const {
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const Session& session) { return session.id == id; });
    return found == list.end() ? nullptr : &*found;
}

std::size_t FleetMonitor::attentionCount() const {
    return countOf(list, [](SessionState state) { return demandsAttention(state); });
}

std::size_t FleetMonitor::workingCount() const {
    return countOf(list, [](SessionState state) { return isBusy(state); });
}

}  // namespace fleetwise
