#include "app/session_commands.h"

#include "foundation/user_defaults.h"
#include "sources/paths.h"
#include "support/fake_process_table.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

namespace fleetwise::testing {
namespace {

using Words = std::vector<std::string>;
using Processes = std::vector<std::int32_t>;

class NotedWindows final : public WindowFocus {
public:
    tl::expected<void, WindowFocusFailure> raise(const Processes& processes) override {
        raised = processes;
        if (!hasWindow) return tl::unexpected(WindowFocusFailure::noWindow);
        return {};
    }
    std::optional<FocusedWindow> focused() override { return front; }

    bool hasWindow = true;
    Processes raised;
    std::optional<FocusedWindow> front;
};

class NotedPrograms final : public ProcessLauncher {
public:
    bool startDetached(const Words& command) override {
        commands.push_back(command);
        return true;
    }
    std::vector<Words> commands;
};

/// A tmux server with one pane.
class OneTmuxServer final : public ProgramOutput {
public:
    tl::expected<std::string, ProgramFailure> run(const Words& command,
                                                  std::chrono::milliseconds) override {
        if (command.at(4) == "list-panes") return panes;
        return command.at(4) == "list-clients" ? clients : "";
    }
    std::string panes;
    std::string clients;
};

/// The machine of the tests: an agent 30 in a shell 20 in a terminal 10.
class SessionCommandsTest : public ::testing::Test {
protected:
    SessionCommandsTest() {
        Paths::setHome(home.path());
        ::setenv("PATH", home.makeDirectory("bin").c_str(), 1);
        ::setenv("TMUX_TMPDIR", home.path().c_str(), 1);
        const std::string sockets = "tmux-" + std::to_string(::getuid());
        home.makeFifo(sockets + "/default");
        ::chmod(home.at(sockets).c_str(), 0700);
        processes.processes = {{1, {.parent = 0}},
                               {10, {.parent = 1, .executable = "/usr/bin/xterm"}},
                               {20, {.parent = 10}},
                               {30, {.parent = 20}}};
        session.id = "s1";
        session.pid = 30;
        session.cwd = "/srv/x y";
        session.isLive = true;
    }
    ~SessionCommandsTest() override {
        ::setenv("PATH", path.c_str(), 1);
        ::unsetenv("TMUX_TMPDIR");
        Paths::setHome(usualHome);
    }

    void install(const char* program) { ::chmod(home.write(program, "#!/bin/sh\n").c_str(), 0700); }

    std::string path = std::getenv("PATH");
    std::string usualHome = Paths::home();
    TemporaryDirectory home;
    InMemoryUserDefaults defaults;
    Settings settings{defaults};
    FakeProcessTable processes;
    NotedWindows windows;
    NotedPrograms launcher;
    OneTmuxServer programs;
    SessionCommands commands{settings, processes, windows, launcher, programs};
    Session session;
};

TEST_F(SessionCommandsTest, focusesTheEditorBeforeTheWindow) {
    session.hostBundleId = "code";
    EXPECT_TRUE(commands.focus(session)) << "without a program that opens addresses";
    EXPECT_EQ(windows.raised, (Processes{30, 20, 10}));
    windows.raised.clear();
    install("bin/xdg-open");
    EXPECT_TRUE(commands.focus(session));
    EXPECT_THAT(launcher.commands,
                ::testing::ElementsAre(Words{home.at("bin/xdg-open"), "vscode://file/srv/x%20y/"}));
    EXPECT_TRUE(windows.raised.empty());
    session.hostBundleId = "xterm";
    EXPECT_TRUE(commands.focus(session));
    EXPECT_EQ(windows.raised, (Processes{30, 20, 10}));
    windows.hasWindow = false;
    EXPECT_EQ(commands.focus(session).error(), "Zu dieser Sitzung wurde kein Fenster gefunden");
    session.pid = {};
    EXPECT_EQ(commands.focus(session).error(), "Zu dieser Sitzung wurde kein Fenster gefunden");
}

TEST_F(SessionCommandsTest, focusesTheTerminalThatShowsTmux) {
    processes.processes[10] = {.parent = 1, .executable = "/usr/bin/tmux"};
    processes.processes[50] = {.parent = 1, .executable = "/usr/bin/kitty"};
    processes.processes[60] = {.parent = 50, .executable = "/usr/bin/tmux"};
    programs.panes = "20 %1 @1 $1 Umbau\n";
    programs.clients = "60 1 $1 /dev/pts/1\n";
    // What shows the session is not taken for a server that it runs in: it has no pane.
    EXPECT_TRUE(commands.focus(session));
    EXPECT_EQ(windows.raised, (Processes{50}));
    programs.clients = "";
    EXPECT_EQ(commands.focus(session).error(),
              "Die tmux-Sitzung »Umbau« ist mit keinem Terminal verbunden");
    programs.panes = "21 %1 @1 $1 Umbau\n";
    EXPECT_TRUE(commands.focus(session));
    EXPECT_EQ(windows.raised, (Processes{30, 20, 10}));
}

TEST_F(SessionCommandsTest, isFocusedOnlyWhereThatIsCertain) {
    Session other = session;
    other.id = "s2";
    other.pid = 31;
    const struct {
        const char* name;
        std::optional<FocusedWindow> front;
        std::int32_t otherParent;
        bool expected;
        bool otherIsLive = true;
        const char* terminal = "/usr/bin/xterm";
    } rows[] = {
        {"its terminal", FocusedWindow{10, true}, 1, true},
        {"its own window", FocusedWindow{30, true}, 1, true},
        {"none", {}, 1, false},
        {"another", FocusedWindow{11, true}, 1, false},
        {"one of several", FocusedWindow{10, false}, 1, false},
        {"the first process", FocusedWindow{1, true}, 1, false},
        {"shared with another", FocusedWindow{10, true}, 10, false},
        {"shared with one that has ended", FocusedWindow{10, true}, 10, true, false},
        {"tmux", FocusedWindow{10, true}, 1, false, true, "/usr/bin/tmux"},
    };
    for (const auto& row : rows) {
        processes.processes[31] = {.parent = row.otherParent};
        processes.processes[10].executable = row.terminal;
        other.isLive = row.otherIsLive;
        windows.front = row.front;
        EXPECT_EQ(commands.isFocused(session, {session, other}), row.expected) << row.name;
    }
    session.pid = {};
    EXPECT_FALSE(commands.isFocused(session, {session}));
}

TEST_F(SessionCommandsTest, resumesWithTheProgramThatIsThere) {
    for (const char* place : {"/usr/local/bin/claude", "/opt/homebrew/bin/claude"}) {
        if (::access(place, F_OK) == 0) GTEST_SKIP() << place << " is installed";
    }
    install("bin/xterm");
    EXPECT_EQ(commands.resume(session).error(), "Diese Sitzung läuft bereits");
    session.isLive = false;
    EXPECT_EQ(commands.focus(session).error(), "Zu dieser Sitzung wurde kein Fenster gefunden")
        << "its process may be another one by now";
    EXPECT_EQ(commands.resume(session).error(),
              "Das Programm von Claude Code wurde nicht gefunden");
    EXPECT_TRUE(launcher.commands.empty());
    const auto script = [&] {
        EXPECT_TRUE(commands.resume(session));
        EXPECT_EQ(launcher.commands.back().at(0), home.at("bin/xterm"));
        return contentsOf(launcher.commands.back().at(2));
    };
    install(".local/bin/claude");
    EXPECT_THAT(script(),
                ::testing::EndsWith("\nexec " + home.at(".local/bin/claude") + " --resume s1\n"));
    EXPECT_EQ(commands.resumeText(session), "cd '/srv/x y' && claude --resume s1");
    install("bin/claude");
    EXPECT_THAT(script(), ::testing::EndsWith("\nexec claude --resume s1\n"));
}

TEST_F(SessionCommandsTest, tellsWhyASessionCannotBeResumed) {
    const std::string refusal = "Diese Sitzung lässt sich nicht fortsetzen.";
    const struct {
        const char* id;
        const char* agent;
        std::string expected;
    } rows[] = {
        {"-rf", "claude", refusal},
        {"", "codex", refusal},
        {"a\x1b[201~b", "claude", refusal},
        {"s1", "gemini", "Sitzungen von Gemini lassen sich nicht fortsetzen"},
    };
    for (const auto& row : rows) {
        session.id = row.id;
        session.agent = SessionAgent(row.agent);
        EXPECT_EQ(commands.resumeText(session).error(), row.expected) << row.id;
    }
}

}  // namespace
}  // namespace fleetwise::testing
