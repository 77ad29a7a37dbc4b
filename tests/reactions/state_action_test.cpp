#include "reactions/state_action.h"

#include "support/temporary_directory.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using ::testing::IsEmpty;
using Kind = StateActionError::Kind;
using Words = std::vector<std::string>;

TEST(StateAction, splitsACommandIntoWords) {
    const struct {
        const char* command;
        tl::expected<Words, StateActionError> expected;
    } rows[] = {
        {"", Words{}},
        {" \t ", Words{}},
        {"a 'b c' d", Words{"a", "b c", "d"}},
        {"\ta  \t b ", Words{"a", "b"}},
        {"a ''", Words{"a", ""}},
        {R"("" a"b c"'d'e)", Words{"", "ab cde"}},
        {R"('say "it"' "it's")", Words{"say \"it\"", "it's"}},
        {R"(a\ b "c\" d)", Words{"a\\", "b", "c\\", "d"}},
        {"a\nb", Words{"a\nb"}},
        {"Ü 'ß", tl::unexpected(StateActionError{Kind::unbalancedQuote, {}})},
        {"a \"b'", tl::unexpected(StateActionError{Kind::unbalancedQuote, {}})},
    };
    for (const auto& row : rows)
        EXPECT_EQ(StateAction::split(row.command), row.expected) << row.command;
}

TEST(StateAction, tellsTheFirstThingThatStandsInTheWay) {
    const auto disk = [](const std::string& path) {
        return StateAction::FileState{.exists = path != "/gone", .isExecutable = path != "/text"};
    };
    const struct {
        const char* command;
        bool isReleased;
        StateActionError expected;
        const char* text;
    } rows[] = {
        {" \n", false, {Kind::empty, {}}, "Kein Befehl eingetragen"},
        {"'/gone", false, {Kind::notConfirmed, {}}, "Noch nicht freigegeben"},
        {"ls '", true, {Kind::unbalancedQuote, {}}, "Ein Anführungszeichen ist nicht geschlossen"},
        {"'' /run", true, {Kind::empty, {}}, "Kein Befehl eingetragen"},
        {"~/run x", true, {Kind::notAbsolute, "~/run"}, "Kein absoluter Pfad — beginnen Sie mit /"},
        {"/gone x", true, {Kind::missing, "/gone"}, "Dort liegt keine Datei"},
        {"'/text'", true, {Kind::notExecutable, "/text"}, "Das ist kein ausführbares Programm"},
    };
    for (const auto& row : rows) {
        StateAction action{"1", SessionState::done, row.command, {}};
        if (row.isReleased) action = action.armed();
        EXPECT_EQ(action.plan(disk), tl::unexpected(row.expected)) << row.command;
        EXPECT_EQ(row.expected.text(), row.text);
    }
    StateAction action = StateAction{"1", SessionState::done, "/run 'a b' ''", "earlier"}.armed();
    EXPECT_EQ(action.plan(disk), (StateAction::Plan{"/run", {"a b", ""}}));
    action.command += ' ';
    EXPECT_EQ(action.plan(disk).error().kind, Kind::notConfirmed);
    action.confirmed = "";
    EXPECT_FALSE(action.isArmed());
}

TEST(StateAction, seesOnlyProgramsOnDisk) {
    const TemporaryDirectory folder;
    const std::string text = folder.write("text", "");
    const auto look = [](const std::string& path) {
        const auto state = StateAction::lookAtDisk(path);
        return std::pair(state.exists, state.isExecutable);
    };
    EXPECT_EQ(look("/bin/sh"), std::pair(true, true));
    EXPECT_EQ(look(folder.makeLink("link", "/bin/sh")), std::pair(true, true));
    EXPECT_EQ(look(text), std::pair(true, false));
    EXPECT_EQ(look(folder.path()), std::pair(true, false));
    EXPECT_EQ(look(folder.at("gone")), std::pair(false, false));
    EXPECT_EQ(look("/bin/sh" + std::string(1, '\0') + "x"), std::pair(false, false));
}

TEST(StateAction, givesTheProgramOnlyFitIds) {
    using Environment = std::map<std::string, std::string>;
    const Environment bare{{"FLEETWISE_STATE", "waitingForSubagents"}};
    for (const std::string& id :
         {std::string(), std::string("a\nb"), std::string("a\0b", 3), std::string("a\x7F"),
          std::string("\xC2\x85"), std::string("\xFF"), std::string(257, 'x')}) {
        EXPECT_EQ(StateAction::environment(SessionState::waitingForSubagents, id), bare) << id;
    }
    for (const std::string& id : {std::string("$(id); ü 1"), std::string(256, 'x')}) {
        EXPECT_EQ(StateAction::environment(SessionState::done, id),
                  (Environment{{"FLEETWISE_STATE", "done"}, {"FLEETWISE_SESSION", id}}));
    }
}

TEST(StateAction, isKeptInTheSettings) {
    const std::vector<StateAction> actions{
        {"1", SessionState::waiting, "/bin/echo \"ü\"", {}},
        StateAction{"2", SessionState::done, "/bin/true", {}}.armed(),
    };
    const std::string text = StateAction::encode(actions);
    EXPECT_EQ(text, R"([{"id":"1","state":"waiting","command":"/bin/echo \"ü\""},)"
                    R"({"id":"2","state":"done","command":"/bin/true","confirmed":")" +
                        StateAction::fingerprint("/bin/true") + "\"}]");
    EXPECT_EQ(StateAction::decode(text), actions);
    EXPECT_EQ(StateAction::decode(*parseJson(text)), actions);
    EXPECT_EQ(StateAction::encode({}), "[]");
    EXPECT_EQ(StateAction::encode({{"1", SessionState::done, "\xFF", {}}}),
              R"([{"id":"1","state":"done","command":")"
              "\uFFFD"
              R"("}])");
}

TEST(StateAction, passesOverSettingsThatAreNone) {
    const std::string deep = std::string(50'000, '[') + std::string(50'000, ']');
    const std::string long_ = R"({"id":"1","state":"done","command":")" + std::string(1 << 20, 'x');
    for (const std::string& text :
         {std::string(), std::string("x"), std::string("{}"), std::string("\"[]\""),
          std::string("[1,null,[],\"a\",{}]"), deep, "[" + long_,
          std::string(R"([{"id":1,"state":"done","command":"a"},{"id":"","state":"done",)"
                      R"("command":"a"},{"id":"1","state":"Done","command":"a"},)"
                      R"({"id":"1","state":3,"command":"a"},{"id":"1","state":"done",)"
                      R"("command":["a"]},{"id":"1","state":"done"}])")}) {
        EXPECT_THAT(StateAction::decode(text), IsEmpty()) << text.substr(0, 40);
        EXPECT_THAT(StateAction::decode(parseJson(text).value_or(Json())), IsEmpty());
    }
    EXPECT_EQ(StateAction::decode("[" + long_ + "\"}]").size(), 1U);
    const auto kept = StateAction::decode(
        R"([7,{"id":"1","state":"done","command":"a","confirmed":7,"more":{}}])");
    EXPECT_EQ(kept, (std::vector<StateAction>{{"1", SessionState::done, "a", {}}}));
}

}  // namespace
}  // namespace fleetwise::testing
