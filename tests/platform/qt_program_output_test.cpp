#include "platform/qt_program_output.h"

#include "platform/event_loop.h"
#include "platform/peer_program.h"
#include "reactions/tmux_servers.h"
#include "support/temporary_directory.h"

#include <sys/stat.h>

#include <algorithm>
#include <optional>

namespace fleetwise::testing {
namespace {

using std::chrono::milliseconds;
using Words = std::vector<std::string>;

class QtProgramOutputTest : public EventLoopTest {
protected:
    QtProgramOutput programs;
};

TEST_F(QtProgramOutputTest, tellsWhatAProgramPrintsInTime) {
    const struct {
        Words command;
        tl::expected<std::string, ProgramFailure> expected;
        milliseconds limit{10'000};
    } rows[] = {
        {{"printf", "%s\n", "$(id) 'x"}, "$(id) 'x\n"},
        {{"sh", "-c", "echo no >&2; echo yes"}, "yes\n"},
        {{"cat"}, ""},
        {{"sh", "-c", "echo yes; exit 3"}, tl::unexpected(ProgramFailure::failed)},
        {{"/no/such/program"}, tl::unexpected(ProgramFailure::failed)},
        {{}, tl::unexpected(ProgramFailure::failed)},
        {{"sh", "-c", "echo yes; exec sleep 1000"},
         tl::unexpected(ProgramFailure::noAnswer),
         milliseconds(100)},
        {{"yes"}, tl::unexpected(ProgramFailure::noAnswer)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(programs.run(row.command, row.limit), row.expected)
            << ::testing::PrintToString(row.command);
    }
}

/// With a tmux server that other servers know nothing of.
class TmuxTest : public QtProgramOutputTest {
protected:
    void SetUp() override {
        if (!isInstalled("tmux")) GTEST_SKIP() << "tmux is not installed";
        ASSERT_EQ(::chmod(sockets.c_str(), 0700), 0);
        for (const std::string& socket : {inner, outer}) {
            servers.push_back(std::make_unique<PeerProgram>(
                "tmux", Words{"-D", "-f", "/dev/null", "-S", socket},
                std::map<std::string, std::string>{{"HOME", home.path()}, {"SHELL", "/bin/sh"}}));
            ASSERT_TRUE(waitUntil([&] {
                return tmux(socket, {"show-options", "-g"}).has_value();
            }));
        }
    }

    tl::expected<std::string, ProgramFailure> tmux(const std::string& socket, Words words) {
        words.insert(words.begin(), {"tmux", "-u", "-S", socket});
        return programs.run(words, milliseconds(10'000));
    }

    /// The first line that tmux prints.
    std::string line(const std::string& socket, const Words& words) {
        const std::string lines = tmux(socket, words).value_or("");
        return lines.substr(0, lines.find('\n'));
    }

    TemporaryDirectory home;
    std::string sockets = home.makeDirectory("sockets");
    std::string inner = home.at("sockets/inner");
    std::string outer = home.at("sockets/outer");
    std::vector<std::unique_ptr<PeerProgram>> servers;
};

TEST_F(TmuxTest, bringsThePaneToTheTerminal) {
    const std::string name = "Übung $(id) %1;'\"";
    const Words paneOf{"-P", "-F", "#{pane_pid} #{pane_id}", "sleep 1000"};
    const auto with = [](Words words, const Words& more) {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    };
    const std::string wanted = line(inner, with({"new-session", "-d", "-s", name}, paneOf));
    const std::string session = line(inner, {"display-message", "-p", "#{session_id}"});
    line(inner, with({"split-window"}, paneOf));
    line(inner, with({"new-window"}, paneOf));
    line(inner, with({"new-session", "-d", "-s", "other"}, paneOf));
    const std::int32_t process = std::stoi(wanted);
    TmuxServers tested({sockets}, programs, milliseconds(10'000));

    EXPECT_FALSE(tested.show({1}));
    auto shown = tested.show({99'999'999, process});
    ASSERT_TRUE(shown);
    EXPECT_EQ(shown->sessionName, name);
    EXPECT_EQ(shown->client, std::nullopt);

    const std::string client =
        line(outer, {"new-session", "-d", "-P", "-F", "#{pane_pid}",
                     "unset TMUX; exec tmux -S '" + inner + "' attach -t =other"});
    const Words clients{"list-clients", "-F", "#{client_pid} #{session_id} #{pane_id}"};
    ASSERT_TRUE(waitUntil([&] { return !line(inner, clients).empty(); }));
    shown = tested.show({process});
    ASSERT_TRUE(shown);
    EXPECT_EQ(shown->client, std::stoi(client));
    EXPECT_EQ(line(inner, clients), client + " " + session + " " + wanted.substr(wanted.find('%')));
}

}  // namespace
}  // namespace fleetwise::testing
