#include "reactions/stay_awake.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

namespace fleetwise::testing {
namespace {

using Type = PowerAssertionType;

/// Answers when the test says so, and counts what is held.
class FakePowerAssertions final : public PowerAssertions {
public:
    void take(Type type, const std::string& reason, Taken taken) override {
        EXPECT_EQ(reason, "Fleetwise: Wach bleiben ist eingeschaltet");
        ++asked;
        questions.push_back({type, std::move(taken)});
    }

    /// Answers the oldest question about `type`.
    void answer(Type type, bool grants) {
        const auto found = std::ranges::find(questions, type, &Question::type);
        ASSERT_NE(found, questions.end());
        const Taken taken = std::move(found->taken);
        questions.erase(found);
        taken(grants ? std::make_unique<Held>(held) : nullptr);
    }

    int asked = 0;
    int held = 0;

private:
    struct Held final : PowerAssertion {
        explicit Held(int& givenCount) : count(givenCount) { ++count; }
        ~Held() override { --count; }
        int& count;
    };
    struct Question {
        Type type;
        Taken taken;
    };
    std::vector<Question> questions;
};

TEST(StayAwake, holdsBothOrNone) {
    // "+" and "-" switch on and off, "S" and "D" grant sleep and display, "s" and "d" refuse them,
    // "." lets half of the patience pass.
    const struct {
        const char* name;
        const char* events;
        int asked;
        int held;
        bool isHeld;
    } rows[] = {
        {"never on", "-", 0, 0, false},
        {"asks for both", "+", 2, 0, false},
        {"holds both", "+SD", 2, 2, true},
        {"on twice", "+SD+", 2, 2, true},
        {"on twice while asking", "++DS", 2, 2, true},
        {"off", "+SD-", 2, 0, false},
        {"off twice", "+SD--", 2, 0, false},
        {"first refused", "+sD", 2, 0, false},
        {"second refused", "+Sd", 2, 0, false},
        {"both refused", "+sd", 2, 0, false},
        {"refused, asked too early", "+sD+.+", 2, 0, false},
        {"refused, asked again", "+sD..+SD", 4, 2, true},
        {"refused, off and on", "+sD-+SD", 4, 2, true},
        {"off while asking", "+-SD", 2, 0, false},
        {"off after the first answer", "+S-D", 2, 0, false},
        {"off and on, answers of before", "+-+SD", 4, 0, false},
        {"off and on, all answers", "+-+SDSD", 4, 2, true},
        {"refused, the second after asking again", "+s..+DSD", 4, 2, true},
        {"not wanted any more", "+sD-..", 2, 0, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        FakePowerAssertions assertions;
        Date now = dateFromSeconds(1e9);
        {
            StayAwake awake(assertions);
            for (const char event : std::string_view(row.events)) {
                switch (event) {
                    case '+':
                    case '-':
                        awake.set(event == '+', now);
                        break;
                    case '.':
                        now = now + StayAwake::patience / 2;
                        break;
                    default:
                        assertions.answer(
                            event == 'S' || event == 's' ? Type::systemSleep : Type::displaySleep,
                            event == 'S' || event == 'D');
                }
            }
            EXPECT_EQ(assertions.asked, row.asked);
            EXPECT_EQ(assertions.held, row.held);
            EXPECT_EQ(awake.isHeld(), row.isHeld);
        }
        EXPECT_EQ(assertions.held, 0);
    }
}

TEST(StayAwake, answersAfterItsEndAreGivenBack) {
    FakePowerAssertions assertions;
    StayAwake(assertions).set(true, {});
    assertions.answer(Type::systemSleep, true);
    EXPECT_EQ(assertions.held, 0);
}

TEST(StayAwake, isOnWhileSessionsWork) {
    const struct {
        bool isWanted;
        std::vector<SessionState> states;
        int expected;
    } rows[] = {
        {true, {}, 0},
        {true, {SessionState::idle, SessionState::done, SessionState::decision}, 0},
        {true, {SessionState::idle, SessionState::working}, 2},
        {true, {SessionState::waitingForSubagents}, 2},
        {false, {SessionState::working}, 0},
    };
    for (const auto& row : rows) {
        FakePowerAssertions assertions;
        StayAwake awake(assertions);
        std::vector<Session> sessions;
        for (const SessionState state : row.states)
            sessions.emplace_back().state = state;
        ReactionRules rules;
        rules.staysAwake = row.isWanted;
        awake.react({sessions, {}, {}, rules, {}});
        EXPECT_EQ(assertions.asked, row.expected);
    }
}

}  // namespace
}  // namespace fleetwise::testing
