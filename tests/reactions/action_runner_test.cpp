#include "reactions/action_runner.h"

#include "reactions/fake_child_processes.h"

#include <gmock/gmock.h>

#include <set>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

class ActionRunnerTest : public ::testing::Test {
protected:
    static StateAction action(SessionState state, const std::string& command) {
        return StateAction{command, state, command, {}}.armed();
    }

    std::vector<std::string> startedPrograms() const {
        std::vector<std::string> programs;
        for (const ChildCommand& command : processes.started)
            programs.push_back(command.executable);
        return programs;
    }

    /// A pass that found these sessions, each with what it did before.
    void pass(const std::vector<std::pair<std::string, SessionState>>& states) {
        std::vector<Session> sessions;
        std::map<std::string, SessionState> now;
        for (const auto& [id, state] : states) {
            Session session;
            session.id = id;
            session.state = state;
            sessions.push_back(session);
            now[id] = state;
        }
        const auto transitions = enteredStates(sessions, previous, clock);
        runner.react({sessions, previous, transitions, rules, clock});
        previous = now;
    }

    FakeChildProcesses processes;
    Date clock = dateFromSeconds(1000);
    ActionRunner runner{processes, [this] { return clock; },
                        [](const std::string&) {
                            return StateAction::FileState{true, true};
                        }};
    ReactionRules rules;
    std::map<std::string, SessionState> previous;
};

TEST_F(ActionRunnerTest, runsTheActionsOfAStateThatIsEntered) {
    const std::vector<StateAction> actions{action(SessionState::done, "/first 'a b'"),
                                           action(SessionState::waiting, "/other"),
                                           {"3", SessionState::done, "/new", {}},
                                           action(SessionState::done, "/last")};
    runner.run(actions, "s", SessionState::done);
    runner.run(actions, "s", SessionState::done);
    EXPECT_THAT(startedPrograms(), ElementsAre("/first", "/last")) << "once";
    EXPECT_THAT(processes.started.front().arguments, ElementsAre("a b"));
    EXPECT_EQ(processes.started.front().environment,
              StateAction::environment(SessionState::done, "s"));
    ASSERT_THAT(runner.log(), SizeIs(3));
    EXPECT_EQ(runner.log()[1].executable, "/new");
    EXPECT_EQ(runner.log()[1].failure, "Noch nicht freigegeben");

    clock += Seconds(5);
    processes.endFirst(3);
    processes.endFirst(0);
    std::set<std::string> ids;
    for (const auto& entry : runner.log()) {
        ids.insert(entry.id);
        EXPECT_EQ(entry.id.size(), 36U);
        EXPECT_EQ(entry.at, dateFromSeconds(1000));
        EXPECT_EQ(entry.sessionId, "s");
        EXPECT_EQ(entry.state, SessionState::done);
    }
    EXPECT_THAT(ids, SizeIs(3));
    EXPECT_EQ(runner.log()[0].exitCode, 3);
    EXPECT_EQ(runner.log()[2].exitCode, 0);
    EXPECT_FALSE(runner.log()[1].exitCode);

    runner.run(actions, "s", SessionState::working);
    runner.run(actions, "s", SessionState::done);
    runner.run(actions, "t", SessionState::done);
    runner.forget({"t"});
    runner.run(actions, "t", SessionState::done);
    EXPECT_THAT(processes.started, SizeIs(8));
}

TEST_F(ActionRunnerTest, followsTheTransitionsOfThePasses) {
    rules.stateActions = {action(SessionState::done, "/done"),
                          action(SessionState::working, "/working")};
    pass({{"a", SessionState::working}, {"b", SessionState::done}});
    EXPECT_THAT(startedPrograms(), ElementsAre()) << "nothing was entered";
    pass({{"a", SessionState::done}, {"b", SessionState::done}});
    pass({{"a", SessionState::done}, {"b", SessionState::working}});
    EXPECT_THAT(startedPrograms(), ElementsAre("/done", "/working"));
    pass({{"b", SessionState::working}});
    pass({{"a", SessionState::working}, {"b", SessionState::working}});
    pass({{"a", SessionState::done}, {"b", SessionState::working}});
    EXPECT_THAT(startedPrograms(), ElementsAre("/done", "/working", "/done"))
        << "a session that was gone is a new one";
}

TEST_F(ActionRunnerTest, logsWhatDoesNotStart) {
    processes.failure = "Das Programm ließ sich nicht starten: x";
    runner.start({"/program", {"a"}}, SessionState::done, "s");
    ASSERT_THAT(runner.log(), SizeIs(1));
    EXPECT_EQ(runner.log()[0].failure, processes.failure);
    EXPECT_THAT(runner.log()[0].arguments, ElementsAre("a"));
}

TEST_F(ActionRunnerTest, letsTheNextOnesWait) {
    constexpr std::size_t fitting = ActionRunner::maximumRunning + ActionRunner::maximumWaiting;
    for (std::size_t index = 0; index <= fitting; ++index)
        runner.start({"/" + std::to_string(index), {}}, SessionState::done, "s");
    EXPECT_THAT(processes.running, SizeIs(ActionRunner::maximumRunning));
    EXPECT_THAT(runner.log(), SizeIs(ActionRunner::maximumRunning + 1));
    EXPECT_EQ(runner.log().back().executable, "/" + std::to_string(fitting));
    EXPECT_EQ(runner.log().back().failure, "Zu viele Aktionen — verworfen.");

    processes.endFirst(0);
    EXPECT_THAT(processes.running, SizeIs(ActionRunner::maximumRunning));
    EXPECT_EQ(runner.log().back().executable, "/32");
    processes.failure = "no more";
    processes.endFirst(0);
    EXPECT_THAT(runner.log(), SizeIs(ActionRunner::maximumEntries));
    EXPECT_EQ(runner.log().back().executable, "/" + std::to_string(fitting - 1));
    while (!processes.running.empty())
        processes.endFirst(1);
    processes.failure.clear();
    runner.start({"/again", {}}, SessionState::done, "s");
    EXPECT_THAT(processes.running, SizeIs(1)) << "those of dropped entries are counted too";
}

TEST_F(ActionRunnerTest, doesNotRunWhatWaitedTooLong) {
    for (std::size_t index = 0; index < ActionRunner::maximumRunning; ++index)
        runner.start({"/endless", {}}, SessionState::done, "s");
    runner.start({"/early", {}}, SessionState::done, "s");
    clock += ActionRunner::longestWait;
    runner.start({"/late", {}}, SessionState::done, "s");
    clock += Seconds(1);
    pass({});
    EXPECT_EQ(runner.log().back().executable, "/early");
    EXPECT_EQ(runner.log().back().failure, "Zu lange gewartet — verworfen.");
    processes.endFirst(0);
    EXPECT_EQ(startedPrograms().back(), "/late");
}

TEST_F(ActionRunnerTest, mayGoBeforeItsChildren) {
    {
        ActionRunner other(processes, [this] { return clock; });
        other.start({"/program", {}}, SessionState::done, "s");
    }
    processes.endFirst(0);
}

}  // namespace
}  // namespace fleetwise::testing
