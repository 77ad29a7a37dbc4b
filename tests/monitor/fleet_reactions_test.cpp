// What the monitor tells reactions, and what the user answers to them.

#include "monitor/virtual_fleet.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Anchor = NotificationPolicy::Anchor;

class FleetReactionsTest : public ::testing::Test, protected VirtualFleet {
protected:
    /// Lets the session go through the states, a pass and a second each.
    void pass(Session changing, std::initializer_list<SessionState> states) {
        for (const SessionState state : states) {
            loop.advance(Seconds(1));
            changing.state = state;
            changing.stateSince = loop.now();
            collect({changing});
        }
    }
    std::vector<std::string> subtitles() const {
        std::vector<std::string> told;
        for (const Notification& notification : notifications.posted)
            told.push_back(notification.subtitle);
        return told;
    }

    Session worker = session("a", SessionState::working);
};

TEST_F(FleetReactionsTest, areToldOfWhatBeganSinceThePassBefore) {
    begin({worker});
    Session hidden = session("hidden", SessionState::waiting);
    hidden.stateSince = start - Seconds(60);
    loop.advance(Seconds(3));
    Session begun = session("begun", SessionState::working);
    begun.stateSince = loop.now();
    Session ended = session("ended", SessionState::dormant);
    ended.stateSince = loop.now();
    collect({hidden, worker, begun, ended});
    EXPECT_THAT(transitions.notes, ElementsAre("begun: >working"))
        << "what only comes to be shown has not just begun";
    EXPECT_THAT(notifications.posted, IsEmpty());
}

TEST_F(FleetReactionsTest, tellTheUserWhoNeedsThem) {
    defaults.set("waitingSound", "ring");
    home.write("sounds/ring.oga", "");
    begin({worker});
    pass(worker, {SessionState::waiting});
    ASSERT_THAT(subtitles(), ElementsAre("Wartet auf Eingabe"));
    EXPECT_TRUE(notifications.posted[0].hasSound);
    EXPECT_THAT(players.started, ElementsAre(::testing::EndsWith("/ring.oga")));
    pass(worker, {SessionState::working});
    EXPECT_THAT(notifications.withdrawn, ElementsAre(notifications.posted[0].identifier));

    const struct {
        const char* key;
        Json value;
        std::size_t sounds;
    } silencers[] = {
        {"notificationsEnabled", false, 1},
        {"isMuted", true, 0},
        {"newSessionsNotify", false, 0},
        {"sessionNotifyOverrides", Json{{"p:/srv/a", false}}, 0},
        {"sessionNotifyOverrides", Json{{"p:/srv/a", true}, {"s:a", false}}, 0},
    };
    for (const auto& silencer : silencers) {
        SCOPED_TRACE(silencer.key + silencer.value.dump());
        transitions.notes.clear();
        notifications.posted.clear();
        players.started.clear();
        defaults.set(silencer.key, silencer.value);
        pass(worker, {SessionState::waiting, SessionState::working});
        EXPECT_THAT(notifications.posted, IsEmpty());
        EXPECT_EQ(players.started.size(), silencer.sounds);
        EXPECT_EQ(transitions.notes.size(), 2) << "all other reactions go on";
        defaults.remove(silencer.key);
    }
}

TEST_F(FleetReactionsTest, followTheChoicesMadeForSessionsAndProjects) {
    Session twin = session("b", SessionState::working);
    twin.cwd = "/srv/a/";
    begin({worker, twin});
    EXPECT_TRUE(monitor.mayNotify(twin));
    monitor.setNotifyOverride(Anchor::project, "a", false);
    EXPECT_FALSE(monitor.mayNotify(worker));
    EXPECT_FALSE(monitor.mayNotify(twin)) << "of the same project";
    EXPECT_EQ(monitor.notifyOverride(Anchor::project, "b"), false);
    monitor.toggleNotifying("a");
    monitor.toggleNotifying("a");
    EXPECT_EQ(defaults.dictionary("sessionNotifyOverrides"), (Json{{"p:/srv/a", false}}));
    monitor.toggleNotifying("b");
    EXPECT_TRUE(monitor.mayNotify(twin));
    EXPECT_FALSE(monitor.mayNotify(worker));
    EXPECT_EQ(monitor.notifyOverride(Anchor::session, "b"), true);
    EXPECT_EQ(defaults.dictionary("sessionNotifyOverrides"),
              (Json{{"p:/srv/a", false}, {"s:b", true}}));
    monitor.setNotifyOverride(Anchor::project, "b", {});
    EXPECT_TRUE(monitor.mayNotify(worker));
    monitor.setNotifyOverride(Anchor::session, "gone", false);
    EXPECT_EQ(defaults.dictionary("sessionNotifyOverrides"), (Json{{"s:b", true}}));
}

TEST_F(FleetReactionsTest, areAnsweredOnTheNotification) {
    struct Requests final : FleetMonitor::Observer {
        void sessionRequested(const std::string& id) override { ids.push_back(id); }
        std::vector<std::string> ids;
    } requests;
    begin({worker, session("z", SessionState::dormant)});
    monitor.addObserver(requests);
    monitor.answerNotification("a", NotificationAction::focus);
    monitor.answerNotification("z", NotificationAction::resume);
    monitor.answerNotification("a", NotificationAction::resume);
    EXPECT_THAT(commands, ElementsAre("focus a", "resume z", "focus a"))
        << "what runs by now is not begun a second time";
    EXPECT_THAT(requests.ids, IsEmpty());
    monitor.answerNotification("z", NotificationAction::focus);
    EXPECT_THAT(std::exchange(requests.ids, {}), ElementsAre("z")) << "its window may be gone";
    monitor.answerNotification("a", NotificationAction::open);
    EXPECT_THAT(requests.ids, ElementsAre("a"));
    commandOutcome = tl::unexpected(std::string("no window"));
    monitor.answerNotification("a", NotificationAction::focus);
    EXPECT_THAT(requests.ids, ElementsAre("a", "a")) << "to read why";
    EXPECT_EQ(monitor.notice("a"), "no window");
    monitor.removeObserver(requests);
}

TEST_F(FleetReactionsTest, offerTheCommandThatResumes) {
    Session foreign = session("x", SessionState::dormant);
    foreign.agent = SessionAgent("aider");
    begin({worker, foreign});
    EXPECT_EQ(monitor.resumeText("a"), "claude --resume a");
    EXPECT_FALSE(monitor.resumeText("x"));
    EXPECT_EQ(monitor.notice("x"), "geht nicht");
}

}  // namespace
}  // namespace fleetwise::testing
