#include "fleet/session_groups.h"

#include "fleet/federations.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

const Date now = dateFromSeconds(1'795'226'700);

struct Facts {
    SessionState state = SessionState::working;
    std::string title = {};
    std::string cwd = {};
    std::string host = {};
    std::string agent = "claude";
    std::string federation = {};
    double age = 0;
    int contextTokens = 0;
    bool isFavorite = false;
    bool isSelfDriven = false;
};

std::optional<std::string> given(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

Session session(const std::string& id, const Facts& facts) {
    Session made;
    made.id = id;
    made.state = facts.state;
    made.isLive = facts.state != SessionState::dormant;
    made.title = given(facts.title);
    made.cwd = given(facts.cwd);
    made.hostApp = given(facts.host);
    made.agent = SessionAgent(facts.agent);
    made.federationId = given(facts.federation);
    made.lastActivityAt = now - Seconds(facts.age);
    made.isFavorite = facts.isFavorite;
    made.stats.emplace();
    made.stats->contextTokens = facts.contextTokens;
    if (facts.isSelfDriven) made.stats->lastTurnOrigin = "task-notification";
    return made;
}

/// A small fleet, sorted as passes sort it.
std::vector<Session> fleet() {
    std::vector<Session> sessions{
        session("a", {.state = SessionState::waiting,
                      .title = "Ölstand prüfen",
                      .cwd = "/home/u/work/engine",
                      .host = "kitty",
                      .age = 30,
                      .contextTokens = 100}),
        session("b", {.title = "Rename billing", .cwd = "/srv/shop", .host = "Code", .age = 20}),
        session("c", {.title = "Agent loop",
                      .cwd = "/srv/shop",
                      .agent = "codex",
                      .age = 10,
                      .contextTokens = 900,
                      .isSelfDriven = true}),
        session("d", {.state = SessionState::failed, .title = "Zeta", .isSelfDriven = true}),
        session("e", {.state = SessionState::dormant,
                      .title = "Old one",
                      .cwd = "/srv/alpha",
                      .federation = "f1",
                      .age = 90,
                      .isFavorite = true}),
        session("f", {.state = SessionState::dormant, .title = "Older", .age = 99}),
    };
    std::sort(sessions.begin(), sessions.end(), Session::precedes);
    return sessions;
}

/// "Title(id,id) | Title(id)", with "~" before a group that begins folded.
std::string shape(const std::vector<Session>& sessions, const ListRules& rules) {
    std::vector<std::string> parts;
    for (const auto& group : buildGroups(sessions, rules, now, nullptr, "/home/u")) {
        std::vector<std::string> ids;
        for (const std::size_t member : group.members)
            ids.push_back(sessions[member].id);
        parts.push_back(fmt::format("{}{}({})", group.beginsFolded ? "~" : "", group.title,
                                    fmt::join(ids, ",")));
    }
    return fmt::format("{}", fmt::join(parts, " | "));
}

TEST(SessionGroups, followTheRules) {
    const struct {
        const char* name;
        ListRules rules;
        std::string shape;
    } rows[] = {
        {"by state, the most urgent first",
         {},
         "Wartet auf Eingabe(a) | Abgebrochen(d) | Arbeitet(c,b) | Ruhend(e,f)"},
        {"by application, unknown ones last",
         {.groupMode = GroupMode::application},
         "Code(b) | kitty(a) | Fenster unbekannt(d,c,e,f)"},
        {"by project",
         {.groupMode = GroupMode::project},
         "alpha(e) | engine(a) | shop(c,b) | Ohne Projekt(d,f)"},
        {"by tool", {.groupMode = GroupMode::tool}, "Claude Code(a,d,b,e,f) | Codex(c)"},
        {"by federation, with the suggestion of a shared folder",
         {.groupMode = GroupMode::federation},
         "Verbund f1(e) | Vorschlag: gemeinsam in shop(c,b) | Ohne Verbund(a,d,f)"},
        {"favourites first, then by name",
         {.groupMode = GroupMode::tool, .sortMode = SortMode::name},
         "Claude Code(e,f,b,d,a) | Codex(c)"},
        {"by activity",
         {.groupMode = GroupMode::tool, .sortMode = SortMode::activity},
         "Claude Code(e,d,b,a,f) | Codex(c)"},
        {"by context",
         {.groupMode = GroupMode::tool, .sortMode = SortMode::context},
         "Claude Code(e,a,d,b,f) | Codex(c)"},
        {"two filters show what either shows",
         {.filters = {ListFilter::attention, ListFilter::working}},
         "Wartet auf Eingabe(a) | Abgebrochen(d) | Arbeitet(c,b)"},
        {"self-driven ones in a summary, but not one that broke off",
         {.filters = {ListFilter::attention, ListFilter::working}, .summarizesSelfDriven = true},
         "Wartet auf Eingabe(a) | Abgebrochen(d) | Arbeitet(b) | ~Selbstgesteuerte Sitzungen(c)"},
        {"search in any case, all words", {.search = " ÖLSTAND  engine "}, "Wartet auf Eingabe(a)"},
        {"search by state", {.search = "ruhend older"}, "Ruhend(f)"},
        {"search by goal",
         {.search = "budget halbieren", .objectives = {{"b", "Das Budget halbieren"}}},
         "Arbeitet(b)"},
        {"nothing found", {.search = "nowhere"}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(shape(fleet(), row.rules), row.shape);
    }
}

TEST(Federations, areSuggestedForRunningSessionsOfOneFolder) {
    const auto suggested = [](const std::vector<Session>& sessions) {
        std::string text;
        for (const auto& suggestion : federationSuggestions(sessions)) {
            text += fmt::format("{}: {} -> {};", suggestion.directory,
                                fmt::join(suggestion.sessionIds, ","),
                                suggestion.federationId.value_or("new"));
        }
        return text;
    };
    EXPECT_EQ(suggested(fleet()), "/srv/shop: c,b -> new;");
    const std::vector<Session> sessions{
        session("a", {.cwd = "/x", .federation = "f1"}),
        session("b1234567890", {.cwd = "/x"}),
        session("c", {.cwd = "/y"}),
        session("d", {.state = SessionState::dormant, .cwd = "/y"}),
    };
    EXPECT_EQ(suggested(sessions), "/x: b1234567890 -> f1;") << "one that has ended shares nothing";
    EXPECT_EQ(federationForHandoff("a", sessions), "f1");
    EXPECT_EQ(federationForHandoff("b1234567890", sessions), "f1");
    EXPECT_EQ(federationForHandoff("c1234567890", sessions), "c1234567");
}

}  // namespace
}  // namespace fleetwise::testing
