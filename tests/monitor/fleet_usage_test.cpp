// Quota, own limits and goals beside the list, on a virtual clock.

#include "support/usage_samples.h"
#include "virtual_fleet.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

class UsageWatcher final : public FleetMonitor::Observer {
public:
    void fleetChanged() override { ++fleetChanges; }
    void usageChanged() override { ++usageChanges; }
    int fleetChanges = 0;
    int usageChanges = 0;
};

class FleetUsageTest : public ::testing::Test, protected VirtualFleet {
protected:
    FleetUsageTest() { monitor.addObserver(watcher); }
    ~FleetUsageTest() override { monitor.removeObserver(watcher); }

    /// Lets time pass as it does while no pass takes any.
    void wait(int seconds) {
        for (int second = 0; second < seconds; ++second) {
            loop.advance(Seconds(1));
            finishAll();
        }
    }
    /// Lets a pass find one more sample of the five-hour window, measured just now.
    void measure(int percent) {
        wait(300);
        samples.push_back(
            {.date = loop.now(), .fiveHour = percent, .sevenDay = {}, .org = {}, .extraUsage = {}});
        nextUsage.samples = std::make_shared<const UsageSamples>(samples);
        wait(10);
    }
    /// Lets the session have used this much output more.
    void spend(const std::string& id, int output) {
        home.append("projects/p/" + id + ".jsonl",
                    usageRecord(id + std::to_string(++requests), output));
        wait(130);
    }
    std::vector<std::string> subtitles() const {
        std::vector<std::string> all;
        for (const Notification& notification : notifications.posted)
            all.push_back(notification.subtitle);
        return all;
    }

    UsageWatcher watcher;
    UsageSamples samples;
    int requests = 0;
};

TEST_F(FleetUsageTest, aResetIsToldOnceAndOnlyWhereItMayBe) {
    begin({});
    measure(60);
    EXPECT_TRUE(notifications.posted.empty()) << "the first pass";
    measure(0);
    ASSERT_EQ(notifications.posted.size(), 1);
    EXPECT_EQ(notifications.posted[0].identifier, "fenster-zurückgesetzt");
    wait(60);
    EXPECT_EQ(notifications.posted.size(), 1);
    for (const auto& [setting, value] :
         {std::pair(Settings::notifiesWindowReset, false), std::pair(Settings::isMuted, true),
          std::pair(Settings::notificationsEnabled, false)}) {
        wait(3'600);
        measure(50);
        monitor.change(setting, value);
        finishAll();
        measure(0);
        monitor.change(setting, !value);
        finishAll();
        measure(1);
        EXPECT_EQ(notifications.posted.size(), 1) << setting.key << " silences it for good";
    }
}

TEST_F(FleetUsageTest, aLimitThatIsReachedWhileMutedIsToldAfterwardsAndOnce) {
    const auto working = session("a", SessionState::working);
    begin({working, session("b", SessionState::working)});
    monitor.setOwnGoal("a", {.costLimitUSD = 25, .createdAt = start});
    spend("a", 999'000);
    spend("b", 2'000'000);
    EXPECT_TRUE(notifications.posted.empty());
    monitor.change(Settings::isMuted, true);
    spend("a", 1'000);
    EXPECT_TRUE(notifications.posted.empty());
    monitor.change(Settings::isMuted, false);
    wait(6);
    ASSERT_EQ(notifications.posted.size(), 1);
    EXPECT_EQ(notifications.posted[0].subtitle, "Kostengrenze erreicht");
    EXPECT_EQ(notifications.posted[0].title, working.displayName());
    spend("a", 5'000);
    EXPECT_EQ(notifications.posted.size(), 1);
    monitor.setOwnGoal("a", {.costLimitUSD = 25, .windowShareLimit = 30, .createdAt = start});
    wait(6);
    EXPECT_TRUE(usagePasses.back().wantsShares);
    nextUsage.windowShares = {{"a", 30}};
    wait(6);
    EXPECT_EQ(subtitles(), (std::vector<std::string>{"Kostengrenze erreicht",
                                                     "Anteil am Fünf-Stunden-Fenster erreicht"}));
}

TEST_F(FleetUsageTest, onlyWhatIsShownOtherwiseIsTold) {
    begin({session("a", SessionState::working)});
    QuotaWindow window{.title = "5", .percent = 40, .ratePerHour = 4.21, .measuredAt = start};
    window.saturatesAt = start + Seconds(3'600);
    nextUsage.fiveHour = window;
    wait(6);
    const int fleetChanges = watcher.fleetChanges;
    EXPECT_EQ(watcher.usageChanges, 1);
    EXPECT_EQ(monitor.usage().fiveHour, window);
    nextUsage.fiveHour->saturatesAt = start + Seconds(3'605);
    nextUsage.fiveHour->ratePerHour = 4.22;
    wait(6);
    EXPECT_EQ(watcher.usageChanges, 1) << "less than a minute, less than a tenth";
    nextUsage.fiveHour->percent = 41;
    wait(6);
    EXPECT_EQ(watcher.usageChanges, 2);
    nextUsage.codex = CodexLimits{
        .windows = {
            {.usedPercent = 5, .windowMinutes = 300, .resetsAt = loop.now() + Seconds(60)}}};
    wait(6);
    EXPECT_EQ(watcher.usageChanges, 3);
    wait(65);
    EXPECT_EQ(watcher.usageChanges, 4) << "the window of Codex has come to its end";
    EXPECT_EQ(watcher.fleetChanges, fleetChanges);
}

TEST_F(FleetUsageTest, theUsersGoalGoesBeforeThatOfCodex) {
    nextUsage.codexGoals = std::make_shared<const GoalStore::Goals>(
        GoalStore::Goals{{"a", {.sessionId = "a", .objective = "Codex"}}});
    begin({session("a", SessionState::working)});
    ASSERT_TRUE(monitor.goal("a"));
    EXPECT_EQ(monitor.goal("a")->objective, "Codex");
    const int before = watcher.usageChanges;
    monitor.setOwnGoal("a", {.objective = "own", .createdAt = start});
    EXPECT_GT(watcher.usageChanges, before);
    EXPECT_TRUE(monitor.goal("a")->isOwn);
    const Settings again(defaults);
    EXPECT_EQ(again.get(Settings::ownGoals)["a"]["objective"], "own");
    monitor.removeOwnGoal("a");
    EXPECT_EQ(monitor.goal("a")->objective, "Codex");
    EXPECT_FALSE(monitor.goal("b"));
    EXPECT_TRUE(usagePasses.back().showsCodex);
}

TEST_F(FleetUsageTest, waitsThatGoOnAreTold) {
    begin({session("a", SessionState::waiting)});
    loop.advance(Seconds(120));
    finishAll();
    const auto waits = monitor.waitingEpisodes(start);
    ASSERT_EQ(waits.size(), 1);
    EXPECT_EQ(waits[0].sessionId, "a");
    EXPECT_EQ(waits[0].ended, loop.now());
}

}  // namespace
}  // namespace fleetwise::testing
