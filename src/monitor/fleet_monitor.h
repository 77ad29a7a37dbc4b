#pragma once

#include "fleet/fleet_snapshot.h"
#include "fleet/session_details.h"
#include "fleet/session_groups.h"
#include "fleet/usage_days.h"
#include "foundation/main_loop.h"
#include "monitor/fleet_costs.h"
#include "monitor/fleet_usage.h"
#include "monitor/settings.h"
#include "reactions/attention_episode.h"
#include "reactions/fleet_reaction.h"
#include "reactions/state_timeline.h"
#include "sources/hook_installer.h"
#include "sources/host_app_memory.h"

#include <tl/expected.hpp>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fleetwise {

class StallWatchdog;

/// Owns the live list of sessions: collects it on a schedule and when files change, tells the
/// reactions what changed, and carries out what the user does to it. Main thread only.
class FleetMonitor {
public:
    /// One that shows the list. Every function is called on the main thread, after the fact.
    class Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        virtual void fleetChanged() {}     ///< sessions, groups or notices differ
        virtual void clockTicked() {}      ///< `clock` moved
        virtual void settingsChanged() {}  ///< any setting; before the fleet changes by it
        virtual void windowRequested() {}  ///< the main window is to be shown
        /// The session is to be shown in the main window.
        virtual void sessionRequested(const std::string& /*id*/) {}
        virtual void hookChanged() {}      ///< what is told of the hook differs
        virtual void costsChanged() {}     ///< figures or prices differ
        virtual void costScanChanged() {}  ///< the progress of a long scan
        virtual void usageChanged() {}     ///< quota, plans or goals differ
    };

    /// What the monitor works with. All that is referred to outlives it.
    struct Environment {
        MainLoop& loop;
        Settings& settings;
        /// Runs one pass. Called on another thread, never twice at once.
        std::function<FleetSnapshot::Collection(const FleetSnapshot::Input&, Date now)> collect;
        /// Reads quota, plans and goals. Called on another thread, never twice at once.
        std::function<UsageOverview(const UsageCollector::Input&, Date now)> collectUsage;
        /// Reads what is shown of one session. Called on another thread.
        std::function<SessionDetails(const Session&)> readDetails;
        HookInstaller::Places hook;
        std::string sessionsDirectory;  ///< the registry, watched as hook.statusDir is
        std::function<void()> ensureStateDirectories;
        HostAppMemory& hosts;
        CostStore& costs;
        Notifier& notifier;
        SoundPlayer& sounds;
        /// The times in which sessions waited for the user, which ended at this date or after, and
        /// those that still wait.
        std::function<std::vector<AttentionEpisode>(Date since, Date now)> waitingEpisodes;
        StallWatchdog& watchdog;
        const StateTimeline& timeline;
        std::vector<FleetReaction*> reactions;  ///< in the order they are told
        /// Brings the window a session runs in to the front, or tells why not, for the user.
        std::function<tl::expected<void, std::string>(const Session&)> focus;
        /// Resumes an ended session in a terminal, or tells why not, for the user.
        std::function<tl::expected<void, std::string>(const Session&)> resume;
        /// The command that resumes the session, or why there is none, for the user.
        std::function<tl::expected<std::string, std::string>(const Session&)> resumeText;
        /// Shows how many sessions need the user on the program's entry in the dock.
        std::function<void(std::size_t)> showDockBadge;
        Calendar calendar = nullptr;
        std::string home;  ///< shown as "~" in paths
    };

    enum class HookState { unknown, missing, installed };

    static constexpr Seconds refreshInterval{5};
    static constexpr Seconds clockInterval{1};

    explicit FleetMonitor(Environment environment);
    ~FleetMonitor();
    FleetMonitor(const FleetMonitor&) = delete;
    FleetMonitor& operator=(const FleetMonitor&) = delete;

    /// Once, when the application has started.
    void start();

    /// Asks for a pass. At most one runs at a time; what is asked for meanwhile becomes one more.
    void refresh();

    void addObserver(Observer& observer);
    void removeObserver(Observer& observer);

    const std::vector<Session>& sessions() const { return list; }
    const Session* session(const std::string& id) const;
    const std::vector<SessionGroup>& groups() const { return grouped; }
    std::size_t attentionCount() const;
    std::size_t workingCount() const;
    Date lastRefresh() const { return refreshedAt; }
    /// A pass takes so long that the list is out of date: some file does not answer.
    bool isLate() const { return hasNotedLateness; }
    bool hasCollected() const { return refreshedAt != Date(); }

    /// The present as running times show it: it moves only as often as they are read.
    Date clock() const { return shownTime; }
    Calendar calendar() const { return environment.calendar; }
    const std::string& home() const { return environment.home; }

    /// How long the clock stands still: short while some running time shows seconds.
    static Seconds clockStep(const std::vector<Session>& sessions, Date now);

    /// Whether anyone looks; while nobody does, the clock stands. Asked once a second.
    void setVisibility(std::function<bool()> isAnyWindowVisible);

    const Settings& settings() const { return environment.settings; }

    /// Changes a setting, and the list by it.
    template <typename Value>
    void change(const Setting<Value>& setting, const std::type_identity_t<Value>& value) {
        environment.settings.set(setting, value);
        settingsChanged();
    }

    /// Stores a setting that no list depends on.
    template <typename Value>
    void store(const Setting<Value>& setting, const std::type_identity_t<Value>& value) {
        environment.settings.set(setting, value);
    }

    void toggleFilter(ListFilter filter);
    void toggleFavorite(const std::string& id) { toggleFavorites({id}); }
    /// Pins the listed sessions among these; unpins them where all are pinned.
    void toggleFavorites(const std::vector<std::string>& ids);
    void setSearch(const std::string& search);
    const std::string& search() const { return searchText; }

    /// Removes a session from the list. One that runs stays, with a notice that says so.
    void dismiss(const std::string& id) { dismissAll({id}); }
    void dismissAll(const std::vector<std::string>& ids);
    /// Lists the removed sessions again.
    void clearDismissed();

    /// Brings the session's window to the front. What stands in the way becomes its notice.
    void focus(const std::string& id);
    void resume(const std::string& id);
    /// Focuses what runs and resumes what has ended.
    void activate(const std::string& id);
    /// The command that resumes the session in a terminal. Nothing where there is none, which
    /// becomes its notice.
    std::optional<std::string> resumeText(const std::string& id);
    /// As `resume` and `resumeText`, of a session that need not be listed; the error is for the
    /// user.
    tl::expected<void, std::string> resumePast(const Session& past);
    tl::expected<std::string, std::string> resumeTextOfPast(const Session& past) const;
    void requestWindow();
    void requestSession(const std::string& id);
    /// Carries out what the user chose on a notification. What stands in the way is shown.
    void answerNotification(const std::string& id, NotificationAction action);

    /// The user's choice for the session or its project; nothing where none was made.
    std::optional<bool> notifyOverride(NotificationPolicy::Anchor anchor,
                                       const std::string& id) const;
    /// Makes that choice, or takes it back.
    void setNotifyOverride(NotificationPolicy::Anchor anchor, const std::string& id,
                           std::optional<bool> notifies);
    /// What holds for the session in the end.
    bool mayNotify(const Session& session) const;
    /// Silences the session, or has it notify again.
    void toggleNotifying(const std::string& id) { toggleNotifyingOf({id}); }
    /// Silences the listed sessions among these; where all are silent, has them notify again.
    void toggleNotifyingOf(const std::vector<std::string>& ids);

    /// Reads the details of a listed session, on another thread; `then` gets them, unless the
    /// session or this is gone by then.
    void readDetails(const std::string& id, std::function<void(const SessionDetails&)> then);
    /// The states since this program started, see StateTimeline::spans.
    const std::vector<StateTimeline::Span>& timeline(const std::string& id) const {
        return environment.timeline.spans(id);
    }

    /// What the last thing the user did to a session came to, where it failed; for ten seconds.
    std::optional<std::string> notice(const std::string& id) const;

    /// The mark to put into a prompt that hands the session's work over to another.
    std::string handoffMark(const std::string& id) const;

    /// What sessions cost, together; see FleetCosts::figures.
    CostFigures figures(const std::vector<std::string>& ids) const { return costs.figures(ids); }
    CostFigures figuresOfToday() const { return costs.figuresOfToday(); }
    std::shared_ptr<const CostStore::Session> cost(const std::string& id) const {
        return costs.cost(id);
    }
    /// Each session by itself; never null.
    std::shared_ptr<const SessionCosts> allCosts() const { return costs.allCosts(); }
    /// What these sessions, and what all sessions used by model since a day; see CostSum::used.
    ModelTallies used(const std::vector<std::string>& ids, std::string_view firstDay) const {
        return costs.used(ids, firstDay);
    }
    ModelTallies used(std::string_view firstDay) const { return costs.used(firstDay); }
    /// The book that all figures are told by.
    const Prices::Book& priceBook() const { return costs.priceBook(); }
    void setPriceBook(const Prices::Book& book) { costs.setPriceBook(book); }
    const std::optional<Prices::Verdict>& priceVerdict() const { return costs.priceVerdict(); }
    const std::optional<CostStore::Progress>& costScan() const { return costs.progress(); }

    /// Quota, plans and Codex's goals as of the last pass.
    const UsageOverview& usage() const { return fleetUsage.overview(); }
    /// The session's goal: the user's own, else Codex's.
    std::optional<GoalStore::Goal> goal(const std::string& id) const;
    std::optional<OwnGoals::Entry> ownGoal(const std::string& id) const;
    void setOwnGoal(const std::string& id, const OwnGoals::Entry& entry);
    void removeOwnGoal(const std::string& id);
    /// What all sessions together used on each of the last `count` days, the oldest first.
    std::vector<UsageDay> usageDays(int count) const;
    /// When sessions waited for the user, from `since` on; may read a file.
    std::vector<AttentionEpisode> waitingEpisodes(Date since) const;

    HookState hookState() const { return hook; }
    const HookInstaller::Places& hookPlaces() const { return environment.hook; }
    /// The installed program is not the one that came with this version, and could not be renewed.
    bool isHookOutdated() const { return hookIsOutdated; }
    /// Why the last installation or removal failed; empty otherwise.
    const std::string& hookProblem() const { return hookFailure; }
    /// From when a change of the hook is asked for until it is done or has failed. What is asked
    /// for meanwhile is not done.
    bool isHookChanging() const { return hookIsChanging; }
    void installHook();
    /// Takes our entries out of the agent's settings.
    void removeHook();

private:
    struct Pass;
    struct Notice {
        std::string text;
        std::unique_ptr<MainLoop::Subscription> expiry;
    };

    void runPass();
    void finishPass(Pass pass);
    void applyPreview(FleetSnapshot::Collection collection);
    void apply(FleetSnapshot::Collection collection);
    void applyUsage(UsageOverview usage);
    void adoptFederations(std::vector<Session>& sessions);
    void applyUserMarks(std::vector<Session>& sessions) const;
    void rememberHosts(std::vector<Session>& sessions, Date now);
    void react(const std::vector<Session>& sessions, Date now);
    void pruneDismissed(const FleetSnapshot::Collection& collection);
    /// Whether the list differs from the one before.
    bool publish(std::vector<Session> sessions);
    bool regroup();
    /// Of all goals, by session id.
    std::map<std::string, std::string> objectives() const;
    void updateDockBadge();
    void listChanged();
    void settingsChanged();
    void tick();
    void noteLateness(bool isLate);
    void setHookState(HookState state);
    using HookChange = tl::expected<SettingsBackup, InstallError> (*)(const HookInstaller::Places&,
                                                                      Date);
    void changeHook(HookChange change, HookState outcome);
    /// Copies of those of the list: every change may make it another one.
    std::vector<Session> listed(const std::vector<std::string>& ids) const;
    void setNotice(const std::string& id, std::string text);
    void carryOut(const std::string& id,
                  const std::function<tl::expected<void, std::string>(const Session&)>& operation);

    template <typename Function, typename... Arguments>
    void notify(Function function, const Arguments&... arguments) {
        for (Observer* observer : std::vector(observers)) {
            const bool isThere =
                std::find(observers.begin(), observers.end(), observer) != observers.end();
            if (isThere) (observer->*function)(arguments...);
        }
    }

    Environment environment;
    std::vector<Observer*> observers;
    FleetCosts costs;
    FleetUsage fleetUsage;

    std::vector<Session> list;
    std::vector<SessionGroup> grouped;
    std::map<std::string, SessionState> previousStates;
    std::map<std::string, SessionState> previouslyLeftOut;
    std::map<std::string, std::string> federations;  ///< by session id, as marks told
    std::map<std::string, Notice> notices;           ///< by session id
    NotificationPolicy::Overrides overrides;         ///< as the setting has them
    std::string searchText;
    HookState hook = HookState::unknown;
    bool hookIsOutdated = false;
    bool hookIsChanging = false;
    bool passPrecedesHook = false;  ///< the hook changed while the pass ran
    std::string hookFailure;
    bool isCollecting = false;
    bool wantsAnotherCollection = false;
    bool isPreviewed = false;  ///< the first pass has shown what runs; all others are whole
    bool hasPublished = false;
    std::size_t dockBadge = 0;
    bool hasNotedLateness = false;
    Date passBegan;
    std::optional<Date> reactedTo;  ///< when the pass began that reactions were told of last
    Date refreshedAt;
    Date shownTime;
    std::function<bool()> isAnyWindowVisible;

    std::unique_ptr<MainLoop::Subscription> refreshTimer;
    std::unique_ptr<MainLoop::Subscription> clockTimer;
    std::unique_ptr<MainLoop::Subscription> recheckTimer;
    std::unique_ptr<MainLoop::Subscription> nextPassTimer;  ///< between two passes in a row
    std::unique_ptr<MainLoop::Subscription> statusWatcher;
    std::unique_ptr<MainLoop::Subscription> registryWatcher;
    /// What follows a background job only happens while this exists.
    std::shared_ptr<bool> aliveToken = std::make_shared<bool>(true);
};

}  // namespace fleetwise
