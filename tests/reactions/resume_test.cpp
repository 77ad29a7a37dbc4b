#include "reactions/resume_command.h"
#include "reactions/resume_launcher.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <set>

namespace fleetwise::testing {
namespace {

using Failure = ResumeLauncher::Failure;
using Words = std::vector<std::string>;

TEST(ResumeCommand, quotesWhatAShellWouldTakeApart) {
    const struct {
        const char* word;
        const char* expected;
    } rows[] = {
        {"/home/a-b_c/x.y:1@%+=,", "/home/a-b_c/x.y:1@%+=,"},
        {"", "''"},
        {"-x", "'-x'"},
        {"two words", "'two words'"},
        {"it's", R"('it'\''s')"},
        {"$(id)", "'$(id)'"},
        {"~/x", "'~/x'"},
        {"Übung", "'Übung'"},
        {"a\nb", "'a\nb'"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ResumeCommand::shellArgument(row.word), row.expected);
    }
}

TEST(ResumeCommand, isTheAgentsOwn) {
    const SessionAgent claude;
    const SessionAgent codex("codex");
    EXPECT_EQ(ResumeCommand::text("id 1", {}, claude, "codex"), "claude --resume 'id 1'");
    EXPECT_EQ(ResumeCommand::text("1", "/a b", claude, "codex"), "cd '/a b' && claude --resume 1");
    EXPECT_EQ(ResumeCommand::text("1", "/a", codex, "/x y/codex"),
              "cd /a && '/x y/codex' resume 1");
    EXPECT_EQ(ResumeCommand::text("1", "a", claude, "codex"), "claude --resume 1");
    EXPECT_EQ(ResumeCommand::resumeOnly("1", claude, "/x y/claude"), "'/x y/claude' --resume 1");
    EXPECT_FALSE(ResumeCommand::text("1", "/a", SessionAgent("gemini"), "codex"));
    EXPECT_FALSE(ResumeCommand::text("", "/a", claude, "codex"));
    EXPECT_FALSE(ResumeCommand::text("-1", "/a", codex, "codex"));
}

TEST(ResumeCommand, findsTheFirstProgram) {
    const struct {
        std::string (*find)(const std::string& home, const ResumeCommand::Exists& exists);
        std::vector<const char*> places;  ///< the last choice first
    } rows[] = {
        {ResumeCommand::codexExecutable,
         {"codex", "/home/u/.local/bin/codex", "/usr/local/bin/codex", "/opt/homebrew/bin/codex",
          "/home/u/.codex/bin/codex", "/home/u/.codex/plugins/.plugin-appserver/codex"}},
        {ResumeCommand::claudeExecutable,
         {"claude", "/opt/homebrew/bin/claude", "/usr/local/bin/claude",
          "/home/u/.claude/local/claude", "/home/u/.local/bin/claude"}},
    };
    for (const auto& row : rows) {
        std::set<std::string> files;
        for (const char* place : row.places) {
            if (*place == '/') files.insert(place);
            EXPECT_EQ(
                row.find("/home/u", [&](const std::string& path) { return files.contains(path); }),
                place);
        }
    }
}

/// Notes what is started.
class FakeProcessLauncher final : public ProcessLauncher {
public:
    bool startDetached(const Words& command) override {
        commands.push_back(command);
        return !broken.contains(command.front());
    }

    std::set<std::string> broken;  ///< programs that do not start
    std::vector<Words> commands;
};

class ResumeLauncherTest : public ::testing::Test {
protected:
    tl::expected<void, Failure> launch(const std::string& terminal = "",
                                       const std::string& sessionId = "1") {
        const ResumeLauncher launcher(
            stateFolder,
            [this](const std::string& program) -> std::optional<std::string> {
                if (!installed.contains(program)) return {};
                return program.starts_with('/') ? program : "/usr/bin/" + program;
            },
            processes);
        return launcher.launch({sessionId, {}, "claude --resume " + sessionId}, terminal);
    }

    TemporaryDirectory folder;
    std::string stateFolder = folder.at("state");
    std::string script = folder.at("state/fortsetzen.command");
    std::set<std::string> installed;  ///< programs on PATH
    FakeProcessLauncher processes;
};

TEST_F(ResumeLauncherTest, tellsEachTerminalInItsWay) {
    const struct {
        const char* terminal;
        Words before;
        const char* script = "/x/y z";
    } rows[] = {
        {"x-terminal-emulator", {"-e"}},
        {"gnome-terminal", {"--"}},
        {"konsole", {"-e"}},
        {"kitty", {}},
        {"alacritty", {"-e"}},
        {"wezterm", {"start", "--"}},
        {"foot", {}},
        {"ptyxis", {"--"}},
        {"kgx", {"--"}},
        {"ghostty", {"-e"}},
        {"tilix", {"-e"}},
        {"terminator", {"-x"}},
        {"xfce4-terminal", {"-x"}},
        {"mate-terminal", {"-x"}},
        {"lxterminal", {}, "--command='/x/y z'"},
        {"terminology", {"-e"}, "'/x/y z'"},
        {"xterm", {"-e"}},
        {"/opt/x/kitty", {}},
        {"other", {"-e"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.terminal);
        Words expected{row.terminal};
        expected.insert(expected.end(), row.before.begin(), row.before.end());
        expected.emplace_back(row.script);
        EXPECT_EQ(ResumeLauncher::commandLine(row.terminal, "/x/y z"), expected);
    }
}

TEST_F(ResumeLauncherTest, opensTheChosenTerminalOrTheFirstThatStarts) {
    const struct {
        const char* name;
        std::set<std::string> installed;
        std::set<std::string> broken;
        const char* chosen;
        std::optional<Words> expected;
    } rows[] = {
        {"none", {}, {}, "", {}},
        {"the first", {"xterm", "kitty"}, {}, "", Words{"/usr/bin/kitty", script}},
        {"the chosen one", {"xterm", "kitty"}, {}, "xterm", Words{"/usr/bin/xterm", "-e", script}},
        {"by its path", {"/opt/foot", "kitty"}, {}, "/opt/foot", Words{"/opt/foot", script}},
        {"the chosen one is gone", {"xterm"}, {}, "foot", Words{"/usr/bin/xterm", "-e", script}},
        {"the first is broken",
         {"xterm", "kitty"},
         {"/usr/bin/kitty"},
         "",
         Words{"/usr/bin/xterm", "-e", script}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        installed = row.installed;
        processes.commands.clear();
        processes.broken = row.broken;
        const auto launched = launch(row.chosen);
        ASSERT_EQ(launched.has_value(), row.expected.has_value());
        if (launched) {
            EXPECT_EQ(processes.commands.back(), *row.expected);
        } else {
            EXPECT_EQ(launched.error(), Failure::noTerminal);
        }
    }
}

TEST_F(ResumeLauncherTest, listsTheTerminalsInTheOrderOfTrying) {
    installed = {"xterm", "other", "kitty", "kgx"};
    EXPECT_EQ(ResumeLauncher::terminals([this](const std::string& program) {
                  return installed.contains(program) ? std::optional(program) : std::nullopt;
              }),
              (Words{"kgx", "kitty", "xterm"}));
}

TEST_F(ResumeLauncherTest, writesTheScriptForItsOwnerOnly) {
    installed = {"xterm"};
    folder.write("state/fortsetzen.command", "of the click before");
    ASSERT_TRUE(launch());
    struct ::stat status {};
    ASSERT_EQ(::stat(script.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    EXPECT_THAT(contentsOf(script), ::testing::EndsWith("exec claude --resume 1\n"));
}

TEST_F(ResumeLauncherTest, refusesWhatItCannotDoSafely) {
    installed = {"xterm"};
    EXPECT_EQ(launch("", "").error(), Failure::unsafeSessionId);
    EXPECT_EQ(launch("", "--help").error(), Failure::unsafeSessionId);
    stateFolder = folder.write("file", "") + "/state";
    EXPECT_EQ(launch().error(), Failure::couldNotWrite);
    EXPECT_TRUE(processes.commands.empty());
}

TEST(ResumeScript, runsTheAgentInTheSessionsFolder) {
    const struct {
        const char* folder;
        const char* sessionId;
    } rows[] = {
        {"plain", "0a1b-2c"},
        {"it's two words", "it's"},
        {"$(touch hit)`touch hit`\\", "$(touch hit)"},
        {"line\nbreak", "a;b"},
        {"-rf", "x\ny"},
        {"--/-P", "a$(touch hit)\n-b"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.folder);
        const TemporaryDirectory home;
        const std::string output = home.at("output");
        home.write("bin/claude", "#!/bin/sh\nprintf '%s|' \"$PWD\" \"$@\"\n");
        ASSERT_EQ(::chmod(home.at("bin/claude").c_str(), 0700), 0);
        const std::string project = home.makeDirectory(row.folder);
        const std::string script = home.write(
            "script", ResumeLauncher::script(
                          project, *ResumeCommand::resumeOnly(row.sessionId, {}, "claude")));
        const std::string run = "cd '" + home.path() + "' && PATH='" + home.at("bin") +
                                "' /bin/sh '" + script + "' >'" + output + "' </dev/null";
        EXPECT_EQ(std::system(run.c_str()), 0);
        EXPECT_EQ(contentsOf(output), project + "|--resume|" + row.sessionId + "|");
        EXPECT_NE(::access(home.at("hit").c_str(), F_OK), 0);
    }
}

TEST(ResumeScript, saysThatTheFolderIsGone) {
    const TemporaryDirectory home;
    const std::string gone = home.at("it's $(gone)\\n");
    const std::string script = home.write("script", ResumeLauncher::script(gone, "echo never"));
    const std::string output = home.at("output");
    const std::string run = "/bin/sh '" + script + "' >'" + output + "' 2>/dev/null </dev/null";
    EXPECT_NE(std::system(run.c_str()), 0);
    EXPECT_EQ(contentsOf(output), "Fleetwise: Das Projektverzeichnis gibt es nicht mehr:\n" + gone +
                                      "\n\nFenster schließen mit der Eingabetaste.\n");
}

}  // namespace
}  // namespace fleetwise::testing
