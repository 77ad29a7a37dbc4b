#include "reactions/state_timeline.h"

#include "localisation/localisation.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

const Date start = dateFromSeconds(1'795'226'700);

/// A session in a state that began so many seconds after the start; nothing told: no date.
struct Told {
    SessionState state = SessionState::working;
    std::optional<double> since;
};

std::string course(const std::vector<std::optional<Told>>& passes) {
    StateTimeline timeline;
    const std::map<std::string, SessionState> none;
    const ReactionRules rules;
    Date now = start;
    for (const auto& told : passes) {
        now += Seconds(10);
        std::vector<Session> sessions;
        if (told) {
            Session& session = sessions.emplace_back();
            session.id = "a";
            session.state = told->state;
            if (told->since) session.stateSince = start + Seconds(*told->since);
        }
        timeline.react({.sessions = sessions,
                        .previousStates = none,
                        .transitions = {},
                        .rules = rules,
                        .now = now});
    }
    std::string text;
    for (const auto& span : timeline.spans("a"))
        text += fmt::format("{}@{} ", rawValue(span.state), (span.since - start).count());
    return text;
}

TEST(StateTimeline, keepsWhatASessionWentThrough) {
    using enum SessionState;
    const struct {
        const char* name;
        std::vector<std::optional<Told>> passes;
        std::string course;
    } rows[] = {
        {"by the dates of the states",
         {{{working, 3.0}}, {{working, 3.0}}, {{done, 24.0}}},
         "working@3 done@24 "},
        {"by the pass where none is told", {{{working, {}}}, {{done, {}}}}, "working@10 done@20 "},
        {"in order, whatever is told", {{{working, 8.0}}, {{done, 2.0}}}, "working@8 done@8 "},
        {"never of the future", {{{working, 80.0}}, {{done, 90.0}}}, "working@10 done@20 "},
        {"from before this program began", {{{idle, -500.0}}}, "idle@-500 "},
        {"anew for one that was gone", {{{working, 3.0}}, {}, {{done, 24.0}}}, "done@24 "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(course(row.passes), row.course) << row.name;
    std::vector<std::optional<Told>> restless;
    for (std::size_t pass = 0; pass < StateTimeline::mostSpans + 7; ++pass)
        restless.push_back(Told{pass % 2 == 0 ? working : done, {}});
    EXPECT_TRUE(course(restless).starts_with("done@80 ")) << "the oldest go first";
}

}  // namespace
}  // namespace fleetwise::testing
