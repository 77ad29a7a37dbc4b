// The monitor on a virtual clock, with passes of the test's making.

#include "virtual_fleet.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

class Watcher final : public FleetMonitor::Observer {
public:
    void fleetChanged() override { ++changes; }
    void clockTicked() override { ++ticks; }
    int changes = 0;
    int ticks = 0;
};

class FleetMonitorTest : public ::testing::Test, protected VirtualFleet {
protected:
    FleetMonitorTest() { monitor.addObserver(watcher); }

    Settings::Strings dismissed() const { return settings.get(Settings::dismissedSessionIds); }

    Watcher watcher;
};

TEST_F(FleetMonitorTest, runsOnePassAtATimeAndOneMoreForAllThatWasAskedMeanwhile) {
    begin({});
    const auto first = passes.size();
    for (int request = 0; request < 10; ++request)
        monitor.refresh();
    finishAll();
    EXPECT_EQ(passes.size() - first, 2U);

    loop.change(home.at("state/status"));
    loop.change(home.at("sessions"));
    finishAll();
    EXPECT_EQ(passes.size() - first, 4U)
        << "both folders are watched; the second change came meanwhile";

    loop.advance(Seconds(4.9));
    finishAll();
    EXPECT_EQ(passes.size() - first, 4U);
    loop.advance(Seconds(0.2));
    finishAll();
    EXPECT_EQ(passes.size() - first, 5U) << "the timer is the safety net";
}

TEST_F(FleetMonitorTest, looksAgainWhenAStateIsNotSettled) {
    begin({});
    next.recheckIn = Seconds(1);
    monitor.refresh();
    finishAll();
    const auto before = passes.size();
    next.recheckIn.reset();
    loop.advance(Seconds(1));
    finishAll();
    EXPECT_EQ(passes.size(), before + 1);
}

TEST_F(FleetMonitorTest, tellsReactionsOfTransitions) {
    begin({session("a", SessionState::working)});
    EXPECT_TRUE(transitions.notes.empty()) << "what is there at the start is no transition";
    collect({session("a", SessionState::done), session("b", SessionState::waiting)});
    collect({session("a", SessionState::done), session("b", SessionState::working)});
    collect({session("b", SessionState::working)});
    collect({session("a", SessionState::working)});
    EXPECT_EQ(transitions.notes,
              (std::vector<std::string>{"a: working>done", "b: waiting>working"}));
}

TEST_F(FleetMonitorTest, logsHowLongSessionsWaited) {
    begin({session("a", SessionState::waiting), session("b", SessionState::waiting)});
    loop.advance(Seconds(3));
    collect({session("a", SessionState::working), session("b", SessionState::waiting)});
    loop.advance(Seconds(3));
    collect({session("a", SessionState::done)});
    const auto episodes = attentionLog.episodes();
    ASSERT_EQ(episodes.size(), 2U);
    EXPECT_EQ(episodes[0].ended - episodes[0].began, Seconds(3));
    EXPECT_EQ(episodes[1].sessionId, "b");
    EXPECT_EQ(episodes[1].ended - episodes[1].began, Seconds(6));
}

TEST_F(FleetMonitorTest, installsTheHookOnlyWhenAskedTo) {
    begin({});
    EXPECT_EQ(monitor.hookState(), FleetMonitor::HookState::missing);
    EXPECT_FALSE(std::filesystem::exists(home.at("settings.json")));
    monitor.installHook();
    EXPECT_TRUE(monitor.isHookChanging());
    finishAll();
    EXPECT_FALSE(monitor.isHookChanging());
    EXPECT_EQ(monitor.hookState(), FleetMonitor::HookState::installed);
    EXPECT_EQ(monitor.hookProblem(), "");
}

TEST_F(FleetMonitorTest, renewsAnOutdatedHookAtTheStart) {
    monitor.installHook();
    finishAll();
    home.write("state/fleetwise-hook", "an older hook");
    monitor.start();
    finishAll();
    EXPECT_EQ(contentsOf(home.at("state/fleetwise-hook")), "the hook");
}

TEST_F(FleetMonitorTest, publishesOnlyWhatDiffers) {
    begin({session("a", SessionState::working)});
    const int before = watcher.changes;
    collect({session("a", SessionState::working)});
    EXPECT_EQ(watcher.changes, before);
    collect({session("a", SessionState::done)});
    EXPECT_EQ(watcher.changes, before + 1);
    EXPECT_EQ(monitor.attentionCount(), 1U);
    EXPECT_EQ(monitor.workingCount(), 0U);
    EXPECT_EQ(badges, std::vector<std::size_t>{1});
}

TEST_F(FleetMonitorTest, dismissesWhatHasEnded) {
    const auto running = session("running", SessionState::waiting);
    const auto ended = session("ended", SessionState::dormant);
    begin({running, ended});
    monitor.dismiss("running");
    monitor.dismiss("ended");
    EXPECT_EQ(ids(), std::vector<std::string>{"running"}) << "at once, without a pass";
    EXPECT_TRUE(monitor.notice("running"));
    EXPECT_EQ(dismissed(), std::vector<std::string>{"ended"});

    next = {.sessions = {running}, .leftOut = {{"ended", SessionState::dormant}}};
    finishAll();
    EXPECT_EQ(passes.back().dismissed, std::set<std::string>{"ended"});
    EXPECT_EQ(dismissed(), std::vector<std::string>{"ended"}) << "it is only left out";

    next.leftOut.clear();
    next.searchedEnded = false;
    monitor.refresh();
    finishAll();
    EXPECT_EQ(dismissed().size(), 1U) << "nobody could look for ended sessions";
    next.searchedEnded = true;
    monitor.refresh();
    finishAll();
    EXPECT_TRUE(dismissed().empty()) << "it is gone for good";
}

TEST_F(FleetMonitorTest, listsADismissedSessionAgainWhenItAsksSomething) {
    settings.set(Settings::dismissedSessionIds, {"tool"});
    next.leftOut = {{"tool", SessionState::waiting}};
    begin({});
    EXPECT_EQ(dismissed().size(), 1U) << "it asked before";
    for (const SessionState state : {SessionState::working, SessionState::decision}) {
        next.leftOut = {{"tool", state}};
        monitor.refresh();
        finishAll();
    }
    EXPECT_TRUE(dismissed().empty());
    EXPECT_TRUE(passes.back().dismissed.empty()) << "and is looked for at once";
}

TEST_F(FleetMonitorTest, beginsWithAPreviewThatNothingFollowsFrom) {
    next.sessions = {session("a", SessionState::waiting)};
    settings.set(Settings::dismissedSessionIds, {"ended"});
    monitor.start();
    loop.finishBackground();
    EXPECT_TRUE(passes.front().isPreview);
    EXPECT_EQ(ids(), std::vector<std::string>{"a"});
    EXPECT_EQ(dismissed().size(), 1U);
    next.sessions.front().state = SessionState::working;
    finishAll();
    EXPECT_FALSE(passes.back().isPreview);
    EXPECT_TRUE(transitions.notes.empty());
}

TEST_F(FleetMonitorTest, saysWhenAFileDoesNotAnswer) {
    begin({session("a", SessionState::working)});
    monitor.refresh();
    loop.advance(Seconds(16));
    EXPECT_TRUE(monitor.isLate());
    finishAll();
    EXPECT_FALSE(monitor.isLate());
}

TEST_F(FleetMonitorTest, aPassThatBeganBeforeADismissalDoesNotBringItBack) {
    const auto ended = session("ended", SessionState::dormant);
    begin({ended});
    monitor.refresh();
    monitor.dismiss("ended");
    loop.finishBackground();
    EXPECT_TRUE(ids().empty());
    EXPECT_EQ(dismissed().size(), 1U);
}

TEST_F(FleetMonitorTest, putsFavouritesFirstAtOnce) {
    begin({session("a", SessionState::idle), session("b", SessionState::idle)});
    monitor.toggleFavorite("b");
    EXPECT_EQ(ids(), (std::vector<std::string>{"b", "a"}));
    monitor.toggleFavorite("b");
    EXPECT_EQ(ids(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(FleetMonitorTest, showsWhyAnOperationFailed) {
    begin({session("a", SessionState::done), session("z", SessionState::dormant)});
    monitor.activate("a");
    EXPECT_FALSE(monitor.notice("a"));
    commandOutcome = tl::unexpected(std::string("Kein Terminal"));
    monitor.activate("z");
    EXPECT_EQ(commands, (std::vector<std::string>{"focus a", "resume z"}));
    EXPECT_EQ(monitor.notice("z"), "Kein Terminal");
    loop.advance(Seconds(10));
    EXPECT_FALSE(monitor.notice("z"));
}

TEST_F(FleetMonitorTest, keepsTheFederationThatAMarkTold) {
    auto marked = session("a", SessionState::working);
    marked.federationId = "f1";
    begin({marked});
    collect({session("a", SessionState::working)});
    EXPECT_EQ(monitor.sessions().front().federationId, "f1");
    EXPECT_EQ(monitor.handoffMark("a"), "<!-- fleetwise:verbund=f1 -->");
}

TEST_F(FleetMonitorTest, movesTheClockOnlyAsOftenAsItIsRead) {
    const struct {
        const char* name;
        bool isVisible;
        std::optional<Seconds> age;
        int ticksInTenSeconds;
    } rows[] = {
        {"nobody looks", false, Seconds(0), 0},
        {"seconds run", true, Seconds(0), 10},
        {"only minutes run", true, Seconds(120), 2},
        {"nothing runs", true, {}, 2},
    };
    begin({});
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto running = session("a", SessionState::working);
        if (row.age) running.stateSince = loop.now() - *row.age;
        collect({running});
        monitor.setVisibility([&] { return row.isVisible; });
        const int before = watcher.ticks;
        loop.advance(Seconds(10));
        EXPECT_EQ(watcher.ticks - before, row.ticksInTenSeconds);
        finishAll();
        loop.advance(Seconds(1));
        finishAll();
    }
}

}  // namespace
}  // namespace fleetwise::testing
