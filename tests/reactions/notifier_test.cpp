#include "reactions/notifier.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using State = SessionState;

class KeptNotifications final : public NotificationCentre {
public:
    void requestAuthorization(Answer given) override {
        ++requests;
        answered = std::move(given);
    }
    void post(const Notification& notification) override { posted.push_back(notification); }
    void withdraw(const std::string& identifier) override { withdrawn.push_back(identifier); }

    int requests = 0;
    Answer answered;
    std::vector<Notification> posted;
    std::vector<std::string> withdrawn;
};

Session sessionIn(State state, const std::string& id = "s1") {
    Session session;
    session.id = id;
    session.name = "Umbau";
    session.cwd = "/shop";
    session.isLive = true;
    session.state = state;
    return session;
}

Session selfDriven(State state, const std::string& id) {
    Session session = sessionIn(state, id);
    session.stats.emplace().lastTurnOrigin = "task-notification";
    return session;
}

/// Gives a notifier one list of sessions after the other.
class NotifierTest : public ::testing::Test {
protected:
    NotifierTest() {
        rules.notifyingStates = {State::decision, State::waiting, State::failed, State::done};
    }

    void authorize() {
        pass({});
        centre.answered(true);
    }

    void pass(const std::vector<Session>& sessions) {
        const auto transitions = enteredStates(sessions, states, dateFromSeconds(0));
        notifier.report({.sessions = sessions,
                         .previousStates = states,
                         .transitions = transitions,
                         .rules = rules,
                         .now = now});
        states.clear();
        for (const Session& session : sessions)
            states[session.id] = session.state;
        now += Seconds(1);
    }

    /// One pass in which the session works, and one in which it is as given.
    void enter(const Session& session) {
        Session before = session;
        before.state = State::working;
        pass({before});
        pass({session});
    }

    std::vector<std::string> postedIdentifiers() const {
        std::vector<std::string> identifiers;
        for (const Notification& notification : centre.posted)
            identifiers.push_back(notification.identifier);
        return identifiers;
    }

    KeptNotifications centre;
    std::set<std::string> focused;
    std::vector<std::string> asked;
    Notifier notifier{centre, currentCalendar(),
                      [this](const Session& session, const std::vector<Session>&) {
                          asked.push_back(session.id);
                          return focused.contains(session.id);
                      }};
    ReactionRules rules;
    std::map<std::string, SessionState> states;
    Date now = dateFromSeconds(100.9);
};

TEST_F(NotifierTest, postsOnlyOnceTheUserAgrees) {
    enter(sessionIn(State::done));
    notifier.announceWindowReset();
    EXPECT_EQ(centre.requests, 1);
    centre.answered(true);
    pass({sessionIn(State::done)});
    EXPECT_THAT(centre.posted, IsEmpty()) << "nothing is kept for later";
    enter(sessionIn(State::failed));
    EXPECT_EQ(centre.posted.size(), 1u);
    centre.answered(false);
    enter(sessionIn(State::failed));
    EXPECT_EQ(centre.posted.size(), 1u);
    EXPECT_EQ(centre.requests, 1);
}

TEST_F(NotifierTest, notifiesWhereTheRulesAllowIt) {
    struct Row {
        const char* name;
        std::function<void(ReactionRules&)> change;
        State before, after;
        bool notifies = false;
    };
    const auto nothing = [](ReactionRules&) {};
    const Row rows[] = {
        {"into a notifying state", nothing, State::working, State::done, true},
        {"between two of them", nothing, State::waiting, State::failed, true},
        {"into another", nothing, State::done, State::working},
        {"no change", nothing, State::done, State::done},
        {"off", [](auto& r) { r.notificationsEnabled = false; }, State::working, State::done},
        {"muted", [](auto& r) { r.isMuted = true; }, State::working, State::waiting},
        {"silent session", [](auto& r) { r.overrides["s:s1"] = false; }, State::idle, State::done},
        {"new ones silent", [](auto& r) { r.newSessionsNotify = false; }, State::idle, State::done},
    };
    const ReactionRules usual = rules;
    authorize();
    for (const Row& row : rows) {
        rules = usual;
        row.change(rules);
        centre.posted.clear();
        pass({});
        pass({sessionIn(row.before)});
        EXPECT_THAT(centre.posted, IsEmpty()) << row.name << ": seen for the first time";
        pass({sessionIn(row.after)});
        EXPECT_EQ(centre.posted.size(), row.notifies ? 1u : 0u) << row.name;
    }
    rules = usual;
    pass({});
    std::vector<Session> sessions{sessionIn(State::waiting)};
    const std::vector<Transition> transitions{{.session = &sessions.front(), .previous = {}}};
    centre.posted.clear();
    notifier.report({sessions, states, transitions, rules, now});
    EXPECT_THAT(centre.posted, IsEmpty()) << "an appearance is no change";
}

TEST_F(NotifierTest, sparesTheSessionThatTheUserLooksAt) {
    authorize();
    focused = {"s1"};
    pass({sessionIn(State::working), sessionIn(State::working, "s2")});
    EXPECT_THAT(asked, IsEmpty());
    pass({sessionIn(State::done), sessionIn(State::done, "s2")});
    EXPECT_THAT(postedIdentifiers(), ElementsAre("s2-done-102"));
    asked.clear();
    rules.sparesFocusedSession = false;
    enter(sessionIn(State::done));
    EXPECT_THAT(postedIdentifiers(), ElementsAre("s2-done-102", "s1-done-104"));
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(NotifierTest, tellsOfAQuestionThatTheUserLeaves) {
    authorize();
    focused = {"s1", "s2"};
    pass({sessionIn(State::working), sessionIn(State::working, "s2")});
    pass({sessionIn(State::waiting), sessionIn(State::decision, "s2")});
    pass({sessionIn(State::waiting), sessionIn(State::decision, "s2")});
    pass({sessionIn(State::working), sessionIn(State::decision, "s2")});
    EXPECT_THAT(centre.posted, IsEmpty());
    focused.clear();
    pass({sessionIn(State::working), sessionIn(State::decision, "s2")});
    pass({sessionIn(State::working), sessionIn(State::decision, "s2")});
    EXPECT_THAT(postedIdentifiers(), ElementsAre("s2-decision-105")) << "once, and not of s1";
}

TEST_F(NotifierTest, tellsWhoAndWhat) {
    authorize();
    rules.notifyingStates.insert(State::dormant);
    Session waiting = sessionIn(State::waiting);
    waiting.lastMessage = "rm -rf build?";
    enter(waiting);
    Session ended = sessionIn(State::dormant, "s2");
    ended.isLive = false;
    enter(ended);
    ended.agent = SessionAgent("gemini");
    enter(ended);
    const std::string about = label(State::dormant);
    EXPECT_EQ(centre.posted, (std::vector<Notification>{{.identifier = "s1-waiting-102",
                                                         .title = "Umbau",
                                                         .subtitle = label(State::waiting),
                                                         .body = "rm -rf build?",
                                                         .sessionId = "s1",
                                                         .hasSound = true},
                                                        {.identifier = "s2-dormant-104",
                                                         .title = "Umbau",
                                                         .subtitle = about,
                                                         .sessionId = "s2",
                                                         .button = NotificationAction::resume},
                                                        {.identifier = "s2-dormant-106",
                                                         .title = "Umbau",
                                                         .subtitle = about,
                                                         .sessionId = "s2",
                                                         .button = NotificationAction::open}}));
}

TEST_F(NotifierTest, takesBackWhatIsAnswered) {
    authorize();
    rules.notifyingStates.insert(State::idle);
    pass({sessionIn(State::working), sessionIn(State::working, "s2"),
          sessionIn(State::working, "s3")});
    pass({sessionIn(State::waiting), sessionIn(State::failed, "s2"), sessionIn(State::idle, "s3")});
    pass({sessionIn(State::waiting), sessionIn(State::failed, "s2"), sessionIn(State::idle, "s3")});
    EXPECT_THAT(centre.withdrawn, IsEmpty());
    rules.isMuted = true;
    pass({sessionIn(State::working), sessionIn(State::failed, "s2"),
          sessionIn(State::working, "s3")});
    EXPECT_THAT(centre.withdrawn, ElementsAre("s1-waiting-102")) << "also while muted";
    pass({sessionIn(State::working)});
    pass({});
    EXPECT_THAT(centre.withdrawn, ElementsAre("s1-waiting-102", "s2-failed-102")) << "once";
}

class SelfDrivenNotifierTest : public NotifierTest {
protected:
    SelfDrivenNotifierTest() {
        rules.summarizesSelfDriven = true;
        rules.notifyingStates.insert({State::idle, State::working});
        authorize();
    }

    /// Lets eight sessions fail or rest in the course of four passes, and time pass.
    void changeEight() {
        std::vector<Session> sessions;
        for (const char* id : {"a", "b", "c", "d", "e", "f", "g", "h"})
            sessions.push_back(selfDriven(State::compacting, id));
        pass(sessions);
        for (std::size_t index = 0; index < sessions.size(); index += 2) {
            sessions[index].state = State::failed;
            sessions[index + 1].state = State::idle;
            if (index + 2 == sessions.size()) sessions[index].state = State::idle;
            pass(sessions);
        }
        now += Notifier::summaryTime;
        pass(sessions);
    }
};

TEST_F(SelfDrivenNotifierTest, gathersEightChangesIntoOne) {
    changeEight();
    EXPECT_EQ(centre.posted,
              (std::vector<Notification>{{.identifier = "selbstgesteuert-116",
                                          .title = "8 selbstgesteuerte Sitzungen",
                                          .body = "3 × " + shortLabel(State::failed) + ", 5 × " +
                                                  shortLabel(State::idle)}}));
}

TEST_F(SelfDrivenNotifierTest, postsEightWhereTheyAreNotSummedUp) {
    rules.summarizesSelfDriven = false;
    changeEight();
    EXPECT_EQ(centre.posted.size(), 8u);
}

TEST_F(SelfDrivenNotifierTest, letsThroughWhatNeedsTheUserOrCameFromThem) {
    struct Row {
        State state;
        bool comesThrough;
    };
    for (const auto& [state, comesThrough] :
         {Row{State::waiting, true}, Row{State::decision, true}, Row{State::done, true},
          Row{State::working, false}, Row{State::idle, false}, Row{State::failed, false}}) {
        centre.posted.clear();
        pass({selfDriven(State::compacting, "s1"), sessionIn(State::compacting, "s2")});
        pass({selfDriven(state, "s1"), sessionIn(state, "s2")});
        EXPECT_EQ(centre.posted.size(), comesThrough ? 2u : 1u) << rawValue(state);
        EXPECT_EQ(centre.posted.back().sessionId, "s2");
    }
}

TEST_F(SelfDrivenNotifierTest, tellsOnlyWhatStillHolds) {
    pass({selfDriven(State::working, "a"), selfDriven(State::working, "b"),
          selfDriven(State::working, "c"), selfDriven(State::working, "d")});
    const auto idle = [](const char* id) { return selfDriven(State::idle, id); };
    pass({idle("a"), idle("b"), idle("c"), idle("d")});
    focused = {"d"};
    now += Notifier::summaryTime - Seconds(2);
    pass({selfDriven(State::working, "a"), idle("b"), idle("c"), idle("d")});
    EXPECT_THAT(centre.posted, IsEmpty()) << "not before the time is over";
    rules.overrides["s:b"] = false;
    pass({selfDriven(State::working, "a"), idle("b"), idle("c"), idle("d")});
    EXPECT_THAT(postedIdentifiers(), ElementsAre("c-idle-112")) << "a single one as it is";
}

TEST_F(SelfDrivenNotifierTest, forgetsWhatIsGatheredWhileMuted) {
    const auto changeTwo = [this](State state) {
        pass({selfDriven(state, "a"), selfDriven(state, "b")});
    };
    changeTwo(State::working);
    changeTwo(State::idle);
    rules.isMuted = true;
    changeTwo(State::idle);
    rules.isMuted = false;
    now += Notifier::summaryTime;
    changeTwo(State::idle);
    EXPECT_THAT(centre.posted, IsEmpty());
    changeTwo(State::failed);
    now -= Seconds(3600);
    changeTwo(State::failed);
    EXPECT_EQ(centre.posted.size(), 1u) << "although the clock was set back";
}

TEST_F(NotifierTest, tellsOfLimitsAndResets) {
    const Session session = sessionIn(State::working);
    const OwnGoals::Breach cost = OwnGoals::CostBreach{.usd = 5.126, .limit = 5};
    const OwnGoals::Breach share = OwnGoals::WindowBreach{.share = 29.9999, .limit = 30};
    notifier.announceBreach(cost, session);
    EXPECT_THAT(centre.posted, IsEmpty());
    ASSERT_EQ(centre.requests, 1);
    centre.answered(true);
    notifier.announceBreach(cost, session);
    notifier.announceBreach(share, session);
    notifier.announceWindowReset();
    EXPECT_EQ(centre.posted, (std::vector<Notification>{
                                 {.identifier = "grenze-" + OwnGoals::announcementKey("s1", cost),
                                  .title = "Umbau",
                                  .subtitle = "Kostengrenze erreicht",
                                  .body = "5,13 $ von 5,00 $",
                                  .sessionId = "s1",
                                  .hasSound = true},
                                 {.identifier = "grenze-" + OwnGoals::announcementKey("s1", share),
                                  .title = "Umbau",
                                  .subtitle = "Anteil am Fünf-Stunden-Fenster erreicht",
                                  .body = "30 % des Fensters",
                                  .sessionId = "s1",
                                  .hasSound = true},
                                 {.identifier = "fenster-zurückgesetzt",
                                  .title = "Fünf-Stunden-Fenster zurückgesetzt",
                                  .subtitle = "",
                                  .body = "Das Kontingent zählt wieder von vorn.",
                                  .sessionId = "",
                                  .hasSound = true}}));
}

}  // namespace
}  // namespace fleetwise::testing
