#pragma once

#include "foundation/virtual_main_loop.h"
#include "monitor/fleet_monitor.h"
#include "reactions/attention_log.h"
#include "reactions/stall_watchdog.h"
#include "support/temporary_directory.h"

#include <string>
#include <utility>
#include <vector>

namespace fleetwise::testing {

/// A session in a folder of its own; what is not dormant has a process.
inline Session session(const std::string& id, SessionState state) {
    Session made;
    made.id = id;
    made.state = state;
    made.isLive = state != SessionState::dormant;
    if (made.isLive) made.pid = 4711;
    made.cwd = "/srv/" + id;
    return made;
}

/// Notes each change of a state as "id: from>to".
class TransitionNotes final : public FleetReaction {
public:
    void react(const FleetChange& change) override {
        for (const Transition& transition : change.transitions) {
            const auto before = transition.previous;
            notes.push_back(transition.session->id + ": " +
                            std::string(before ? rawValue(*before) : "") + ">" +
                            std::string(rawValue(transition.session->state)));
        }
    }
    std::vector<std::string> notes;
};

/// Keeps what was posted, and agrees when it is asked to.
class KeptNotifications final : public NotificationCentre {
public:
    void requestAuthorization(Answer answered) override { answer = std::move(answered); }
    void post(const Notification& notification) override { posted.push_back(notification); }
    void withdraw(const std::string& identifier) override { withdrawn.push_back(identifier); }
    void agree() {
        if (answer) std::exchange(answer, {})(true);
    }
    std::vector<Notification> posted;
    std::vector<std::string> withdrawn;

private:
    Answer answer;
};

/// Keeps what was to be started; it ends when the test lets it.
class KeptCommands final : public ChildProcesses {
public:
    tl::expected<void, std::string> start(const ChildCommand& command, Ended ended) override {
        started.push_back(command.arguments.back());
        running.push_back(std::move(ended));
        return {};
    }
    void endAll() {
        for (const Ended& ended : std::exchange(running, {}))
            ended(0);
    }
    std::vector<std::string> started;  ///< the last argument of each

private:
    std::vector<Ended> running;
};

/// A monitor on a virtual clock, with passes of the test's making.
class VirtualFleet {
public:
    /// Starts the monitor and lets its first pass end.
    void begin(std::vector<Session> sessions) {
        next.sessions = std::move(sessions);
        monitor.start();
        finishAll();
    }
    /// Lets a pass bring these sessions.
    void collect(std::vector<Session> sessions) {
        next.sessions = std::move(sessions);
        monitor.refresh();
        finishAll();
    }
    void finishAll() {
        do {
            loop.advance(Seconds(0));
        } while (loop.finishBackground() > 0);
        notifications.agree();
        players.endAll();
    }
    std::vector<std::string> ids() const {
        std::vector<std::string> listed;
        for (const Session& session : monitor.sessions())
            listed.push_back(session.id);
        return listed;
    }

    const Date start = dateFromSeconds(1'795'226'700);
    TemporaryDirectory home;
    VirtualMainLoop loop{start};
    InMemoryUserDefaults defaults;
    Settings settings{defaults};
    HostAppMemory hosts{home.at("hosts.json"), defaults, start};
    CostStore costs{{home.at("projects"), home.at("codex"), home.at("cost-index.json")},
                    ::date::locate_zone("Etc/UTC"),
                    1};
    StallWatchdog watchdog{"", [](const auto&) {}};
    AttentionLog attentionLog{home.at("attention-log.json"), start};
    TransitionNotes transitions;
    StateTimeline timeline;
    SessionDetails nextDetails;  ///< what is read of any session
    KeptNotifications notifications;
    Notifier notifier{notifications, date::locate_zone("Europe/Berlin"), {}};
    KeptCommands players;
    SoundPlayer sounds{players,
                       [](const auto& program) { return "/usr/bin/" + program; },
                       {home.makeDirectory("sounds")}};
    UsageOverview nextUsage;                         ///< what the next passes find of quota
    std::vector<UsageCollector::Input> usagePasses;  ///< what passes were to look for
    FleetSnapshot::Collection next;                  ///< what the next passes bring
    std::vector<FleetSnapshot::Input> passes;        ///< the passes so far
    std::vector<std::string> commands;               ///< "focus ID" and "resume ID", as they came
    std::vector<std::size_t> badges;                 ///< the counts shown in the dock
    tl::expected<void, std::string> commandOutcome;  ///< of the next commands

    FleetMonitor monitor{environment()};

private:
    FleetMonitor::Environment environment() {
        return {
            .loop = loop,
            .settings = settings,
            .collect =
                [this](const FleetSnapshot::Input& input, Date) {
                    passes.push_back(input);
                    return next;
                },
            .collectUsage =
                [this](const UsageCollector::Input& input, Date now) {
                    usagePasses.push_back(input);
                    nextUsage.at = now;
                    return nextUsage;
                },
            .readDetails = [this](const Session&) { return nextDetails; },
            .hook = {.settingsFile = home.at("settings.json"),
                     .stateDir = home.at("state"),
                     .statusDir = home.at("state/status"),
                     .installedHook = home.at("state/fleetwise-hook"),
                     .bundledHook = home.write("bundled-hook", "the hook")},
            .sessionsDirectory = home.at("sessions"),
            .ensureStateDirectories = [] {},
            .hosts = hosts,
            .costs = costs,
            .notifier = notifier,
            .sounds = sounds,
            .waitingEpisodes =
                [this](Date since, Date now) {
                    auto episodes = attentionLog.episodes(since);
                    for (const auto& open : attentionLog.openEpisodes(now))
                        episodes.push_back(open);
                    return episodes;
                },
            .watchdog = watchdog,
            .timeline = timeline,
            .reactions = {&notifier, &sounds, &transitions, &attentionLog, &timeline},
            .focus = [this](const Session& session) { return carriedOut("focus " + session.id); },
            .resume = [this](const Session& session) { return carriedOut("resume " + session.id); },
            .resumeText = [](const Session& session) -> tl::expected<std::string, std::string> {
                if (!session.agent.isClaude()) return tl::unexpected(std::string("geht nicht"));
                return "claude --resume " + session.id;
            },
            .showDockBadge = [this](std::size_t count) { badges.push_back(count); },
            .calendar = date::locate_zone("Europe/Berlin"),
            .home = home.path(),
        };
    }

    tl::expected<void, std::string> carriedOut(std::string command) {
        commands.push_back(std::move(command));
        return commandOutcome;
    }
};

}  // namespace fleetwise::testing
