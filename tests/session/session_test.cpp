#include "localisation/localisation.h"
#include "session/permission_mode.h"
#include "session/session_agent.h"
#include "session/session_error.h"
#include "session/session_origin.h"
#include "session/session_state.h"

#include <gtest/gtest.h>

#include <vector>

namespace fleetwise {
namespace {

TEST(SessionState, isReadBackFromItsRawValue) {
    for (const SessionState state : allSessionStates) {
        EXPECT_EQ(sessionStateFrom(rawValue(state)), state) << rawValue(state);
    }
    EXPECT_EQ(rawValue(SessionState::waitingForSubagents), "waitingForSubagents");
    for (const char* other : {"", "Done", "done ", "waitingforsubagents", "?"}) {
        EXPECT_FALSE(sessionStateFrom(other)) << other;
    }
}

TEST(SessionState, needsAttentionOrIsBusyByItsIndex) {
    for (std::size_t index = 0; index < allSessionStates.size(); ++index) {
        const SessionState state = allSessionStates[index];
        SCOPED_TRACE(rawValue(state));
        EXPECT_EQ(static_cast<std::size_t>(state), index);
        EXPECT_EQ(demandsAttention(state), index < 4);
        EXPECT_EQ(isBusy(state), index >= 4 && index <= 6);
    }
}

TEST(SessionAgent, normalisesItsName) {
    const struct {
        const char* name;
        std::string given;
        std::string expected;
    } rows[] = {
        {"blanks, line end and capitals", " CoDex\r\n", "codex"},
        {"empty", "", "claude"},
        {"blanks only", " \t\n", "claude"},
        {"all kinds of characters", "My_agent-2.0", "my_agent-2.0"},
        {"32 characters", std::string(32, 'a'), std::string(32, 'a')},
        {"32 characters between blanks", " " + std::string(32, 'A') + " ", std::string(32, 'a')},
        {"33 characters", std::string(33, 'a'), "?"},
        {"two words", "claude code", "?"},
        {"a slash", "../codex", "?"},
        {"a letter beyond ASCII", "Häkchen", "?"},
        {"a zero byte", std::string("codex\0", 6), "?"},
        {"the unusable name itself", "?", "?"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(SessionAgent(row.given).rawValue(), row.expected);
    }
    EXPECT_EQ(SessionAgent(), SessionAgent("Claude"));
}

TEST(SessionAgent, showsUnlistedNamesCapitalised) {
    const struct {
        const char* name;
        const char* label;
        const char* symbol;
    } rows[] = {
        {"claude", "Claude Code", "sparkle"},
        {"two words", "?", "questionmark"},
        {"night-owl", "Night-owl", "cpu"},
        {"3po", "3po", "cpu"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(SessionAgent(row.name).label(), row.label);
        EXPECT_EQ(SessionAgent(row.name).symbol(), row.symbol);
    }
}

TEST(SessionOrigin, isToldByWordsOfTheEntrypoint) {
    const struct {
        std::optional<std::string_view> entrypoint;
        SessionOrigin expected;
    } rows[] = {
        {std::nullopt, SessionOrigin::unknown},
        {"", SessionOrigin::unknown},
        {"cli", SessionOrigin::cli},
        {"sdk-cli", SessionOrigin::cli},
        {"terminal", SessionOrigin::cli},
        {"claude-desktop", SessionOrigin::desktop},
        {"cli-in-desktop", SessionOrigin::desktop},
        {"sdk-ts", SessionOrigin::unknown},
        {"CLI", SessionOrigin::unknown},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(sessionOriginFrom(row.entrypoint), row.expected)
            << row.entrypoint.value_or("absent");
    }
}

TEST(SessionTexts, existOnlyForKnownNames) {
    EXPECT_EQ(PermissionMode::label("acceptEdits"), "Edits");
    EXPECT_EQ(PermissionMode::explanation("plan"),
              "Planungsmodus: erst Vorschlag, dann Ausführung");
    EXPECT_FALSE(PermissionMode::label("default"));
    EXPECT_FALSE(PermissionMode::label("Plan"));
    EXPECT_FALSE(PermissionMode::explanation(std::nullopt));
    EXPECT_EQ(SessionError::label("max_output_tokens"), "Antwortlänge erschöpft");
    EXPECT_FALSE(SessionError::label("quota"));
    EXPECT_FALSE(SessionError::label(""));
}

TEST(SessionTexts, followTheInterfaceLanguage) {
    setInterfaceLanguage("en", {{"Fertig", "Done"}, {"Plan", "Planning"}, {"?", "unclear"}});
    EXPECT_EQ(shortLabel(SessionState::done), "Done");
    EXPECT_EQ(label(SessionState::done), "Antwort bereit");
    EXPECT_EQ(label(SessionOrigin::unknown), "unclear");
    EXPECT_EQ(SessionAgent("?").label(), "unclear");
    EXPECT_EQ(PermissionMode::label("plan"), "Planning");
    setInterfaceLanguage("de", {});
}

}  // namespace
}  // namespace fleetwise
