#include "fleet/session.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fleetwise {
namespace {

const Date now = dateFromSeconds(1'795'226'700);

Session busySession(double secondsSinceEvent) {
    Session session;
    session.id = "4e39591d-729e-494a-95fd-e33d7af74be5";
    session.isLive = true;
    session.state = SessionState::working;
    session.lastEvent = "PostToolUse";
    session.lastEventAt = now - Seconds(secondsSinceEvent);
    return session;
}

template <typename Change>
Session changed(Session session, Change change) {
    change(session);
    return session;
}

TEST(Session, goesStaleAfterItsLimit) {
    const struct {
        const char* name;
        Session session;
        bool isStale;
    } rows[] = {
        {"at the limit", busySession(300), false},
        {"beyond the limit", busySession(300.5), true},
        {"a subagent works",
         changed(busySession(1800), [](Session& session) { session.subagentCount = 1; }), false},
        {"a subagent works for too long",
         changed(busySession(1801), [](Session& session) { session.subagentCount = 1; }), true},
        {"a tool runs",
         changed(busySession(1800), [](Session& session) { session.lastEvent = "PreToolUse"; }),
         false},
        {"a tool runs for too long",
         changed(busySession(1801), [](Session& session) { session.lastEvent = "PreToolUse"; }),
         true},
        {"failed long ago",
         changed(busySession(9000), [](Session& session) { session.lastEvent = "StopFailure"; }),
         false},
        {"answered a moment ago, as no event tells",
         changed(busySession(900), [](Session& s) { s.stateSince = now - Seconds(5); }), false},
        {"not busy",
         changed(busySession(9000), [](Session& session) { session.state = SessionState::done; }),
         false},
        {"not live", changed(busySession(9000), [](Session& session) { session.isLive = false; }),
         false},
        {"never an event",
         changed(busySession(0), [](Session& session) { session.lastEventAt.reset(); }), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.session.isStale(now), row.isStale);
    }
}

TEST(Session, showsTheBestNameItHas) {
    Session session;
    session.id = "4e39591d-729e-494a-95fd-e33d7af74be5";
    EXPECT_EQ(session.displayName(), "4e39591d");
    session.cwd = "/home/dev/work/demo/";
    EXPECT_EQ(session.displayName(), "demo");
    session.title = "\n  " + std::string(100, 'x') + "\nsecond line";
    EXPECT_EQ(session.displayName(), std::string(79, 'x') + "…");
    session.title = "   ";
    EXPECT_EQ(session.displayName(), "demo");
    session.name = "Release \x1b[2J";
    EXPECT_EQ(session.displayName(), "Release  [2J");
}

TEST(Session, shortensItsPathBelowHomeOnly) {
    const struct {
        const char* cwd;
        const char* shown;
    } rows[] = {{"/home/dev/work", "~/work"},
                {"/home/dev", "~"},
                {"/home/developer", "/home/developer"},
                {"/srv", "/srv"}};
    for (const auto& row : rows) {
        Session session;
        session.cwd = row.cwd;
        EXPECT_EQ(session.displayPath("/home/dev"), row.shown);
    }
    EXPECT_EQ(Session().displayPath("/home/dev"), "");
}

TEST(Session, saysInOneLineWhatItDoes) {
    using enum SessionState;
    const auto withState = [](SessionState state, auto change) {
        Session session = busySession(1);
        session.state = state;
        change(session);
        return session;
    };
    const auto nothing = [](Session&) {};
    const struct {
        const char* name;
        Session session;
        const char* detail;
    } rows[] = {
        {"question", withState(decision, nothing), "Rückfrage mit Auswahl"},
        {"question with its text",
         withState(decision, [](Session& s) { s.lastMessage = "Which colour?\nred"; }),
         "Which colour?"},
        {"permission", withState(waiting, nothing), "Bestätigung erforderlich"},
        {"failure", withState(failed, nothing), "Der Turn wurde abgebrochen"},
        {"failure the desktop app told",
         withState(failed, [](Session& s) { s.desktopError = "rate_limit"; }),
         "Ratenlimit erreicht"},
        {"failure with its message",
         withState(failed, [](Session& s) { s.lastMessage = "API Error: 500"; }), "API Error: 500"},
        {"compaction", withState(compacting, nothing), "Verdichtet den Gesprächsverlauf"},
        {"subagents", withState(waitingForSubagents, [](Session& s) { s.subagentCount = 2; }),
         "Wartet auf Unteragenten: 2"},
        {"work", withState(working, [](Session& s) { s.activity = "npm test"; }), "npm test"},
        {"work with the tool only", withState(working, [](Session& s) { s.lastTool = "Bash"; }),
         "Bash"},
        {"agents in the background", withState(done, [](Session& s) { s.subagentCount = 3; }),
         "Hintergrund-Agenten: 3"},
        {"the answer",
         withState(done,
                   [](Session& s) {
                       s.stats.emplace();
                       s.stats->lastReply = "\nAll green.\nDetails";
                   }),
         "All green."},
        {"planned", withState(scheduled, [](Session& s) { s.wakeupAt = now + Seconds(90); }),
         "Weckt um 02:06"},
        {"silent for long", changed(busySession(600), [](Session& s) { s.activity = "npm test"; }),
         "Seit 10 min keine Meldung"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.session.detail(now, date::locate_zone("Etc/UTC")), row.detail);
    }
}

TEST(Session, sortsByUrgencyThenFavouriteThenActivity) {
    const auto row = [](const char* id, SessionState state, bool isFavorite, double age) {
        Session session;
        session.id = id;
        session.state = state;
        session.isFavorite = isFavorite;
        if (age >= 0) session.lastActivityAt = now - Seconds(age);
        return session;
    };
    std::vector<Session> sessions{
        row("f", SessionState::dormant, true, 1),   row("e", SessionState::working, false, -1),
        row("d", SessionState::working, false, 20), row("b", SessionState::working, true, 30),
        row("c", SessionState::working, false, 10), row("a", SessionState::decision, false, 99),
    };
    std::stable_sort(sessions.begin(), sessions.end(), Session::precedes);
    std::string order;
    for (const auto& session : sessions)
        order += session.id;
    EXPECT_EQ(order, "abcdef");
}

TEST(Session, measuresItsContext) {
    Session session;
    EXPECT_FALSE(session.contextFill({}));
    session.stats.emplace();
    EXPECT_FALSE(session.contextFill({}));
    session.stats->contextTokens = 50'000;
    EXPECT_DOUBLE_EQ(*session.contextFill({}), 0.25);
    EXPECT_DOUBLE_EQ(*session.contextFill(100'000), 0.5);
    EXPECT_DOUBLE_EQ(*session.contextFill(0), 0.25);
    session.codexContextWindow = 400'000;
    EXPECT_DOUBLE_EQ(*session.contextFill({}), 0.125);
    session.codexContextWindow.reset();
    session.stats->contextTokens = 250'000;
    EXPECT_DOUBLE_EQ(*session.contextFill({}), 0.25);
    session.stats->contextTokens = 50'000;
    session.model = "claude-opus-5-5[1m]";
    EXPECT_DOUBLE_EQ(*session.contextFill({}), 0.05);
}

TEST(Session, knowsWhoDrivesIt) {
    Session session;
    EXPECT_FALSE(session.isSelfDriven());
    session.stats.emplace();
    EXPECT_FALSE(session.isSelfDriven());
    session.stats->lastTurnOrigin = "human";
    EXPECT_FALSE(session.isSelfDriven());
    session.stats->lastTurnOrigin = "task-notification";
    EXPECT_TRUE(session.isSelfDriven());
}

TEST(Session, countsItsTimeFromTheTurnWhileBusy) {
    Session session = busySession(5);
    session.stateSince = now - Seconds(10);
    EXPECT_EQ(session.elapsedReference(), session.stateSince);
    session.turnStartedAt = now - Seconds(40);
    EXPECT_EQ(session.elapsedReference(), session.turnStartedAt);
    session.state = SessionState::done;
    EXPECT_EQ(session.elapsedReference(), session.stateSince);
}

TEST(Session, tellsRunningTasksFromRecentFailures) {
    using Status = BackgroundTask::Status;
    const auto task = [](const char* id, Status status, double endedAgo) {
        BackgroundTask made;
        made.id = id;
        made.status = status;
        made.startedAt = now - Seconds(5000);
        if (endedAgo >= 0) made.endedAt = now - Seconds(endedAgo);
        return made;
    };
    Session session;
    session.backgroundTasks = {
        task("running", Status::running, -1), task("fine", Status::completed, 10),
        task("failed", Status::failed, 600),  task("failed long ago", Status::failed, 601),
        task("aborted", Status::aborted, 10), task("lost long ago", Status::orphaned, -1)};
    ASSERT_EQ(session.runningBackgroundTasks().size(), 1U);
    std::vector<std::string> failed;
    for (const auto& found : session.recentlyFailedBackgroundTasks(now))
        failed.push_back(found.id);
    EXPECT_EQ(failed, (std::vector<std::string>{"failed", "aborted"}));
}

TEST(Session, hasAGroupUnderEveryMode) {
    Session session;
    session.state = SessionState::waiting;
    EXPECT_EQ(session.groupKey(GroupMode::status), "waiting");
    EXPECT_EQ(session.groupKey(GroupMode::project), "@noProject");
    EXPECT_EQ(session.groupKey(GroupMode::federation), "@noFederation");
    EXPECT_EQ(session.groupKey(GroupMode::tool), "claude");
    session.cwd = "/srv/x";
    session.federationId = "f1";
    session.hostBundleId = "org.kde.konsole";
    EXPECT_EQ(session.groupKey(GroupMode::project), "/srv/x");
    EXPECT_EQ(session.groupKey(GroupMode::federation), "@verbund:f1");
    EXPECT_EQ(session.groupKey(GroupMode::application), "org.kde.konsole");
}

}  // namespace
}  // namespace fleetwise
