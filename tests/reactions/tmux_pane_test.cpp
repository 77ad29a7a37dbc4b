#include "reactions/tmux_servers.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <map>

namespace fleetwise::testing {
namespace {

using Words = std::vector<std::string>;

TEST(TmuxPane, isReadFromAListing) {
    const TmuxPane pane{.process = 42, .id = "%1", .window = "@2", .session = "$3"};
    const struct {
        const char* listing;
        std::optional<std::string> name;  ///< of the one pane's session
    } rows[] = {
        {"42 %1 @2 $3 main\n", "main"},
        {"42 %1 @2 $3 two words %4 @5\n", "two words %4 @5"},
        {"42 %1 @2 $3 \n", ""},
        {"42 %1 @2 $3", ""},
        {"42 %1 @2 $3 \x1b[31m\xff\n", " [31m\xef\xbf\xbd"},
        {"noise\n\n42 %1 @2 $3 x\n", "x"},
        {"42 %1 @2 $\n", {}},
        {"42 %1; @2 $3 x\n", {}},
        {"42 @2 %1 $3 x\n", {}},
        {"1 %1 @2 $3 x\n", {}},
        {"-42 %1 @2 $3 x\n", {}},
        {"99999999999 %1 @2 $3 x\n", {}},
        {"", {}},
    };
    for (const auto& row : rows) {
        std::vector<TmuxPane> expected;
        if (row.name) {
            expected.push_back(pane);
            expected.back().sessionName = *row.name;
        }
        EXPECT_EQ(TmuxPane::parse(row.listing), expected) << row.listing;
    }
}

TEST(TmuxClient, isReadFromAListing) {
    const std::vector<TmuxClient> expected{
        {.process = 42, .lastActivity = 100, .session = "$3", .name = "/dev/pts/1"}};
    EXPECT_EQ(TmuxClient::parse("42 100 $3 /dev/pts/1\n43 100 $3\n44 x $3 c\n45 1 3 c\n"),
              expected);
}

/// Answers for servers by their socket and command, and notes what is run.
class FakeTmux final : public ProgramOutput {
public:
    tl::expected<std::string, ProgramFailure> run(const Words& command,
                                                  std::chrono::milliseconds) override {
        EXPECT_THAT(Words(command.begin(), command.begin() + 3),
                    ::testing::ElementsAre("tmux", "-u", "-S"));
        const std::string socket = command.at(3).substr(command.at(3).find_last_of('/') + 1);
        if (command.at(4).starts_with("list-")) {
            ++questions;
        } else {
            commands.emplace_back(command.begin() + 4, command.end());
        }
        const auto answer = answers.find(socket + " " + command.at(4));
        if (answer == answers.end()) return tl::unexpected(missing);
        return answer->second;
    }

    std::map<std::string, std::string> answers;
    ProgramFailure missing = ProgramFailure::failed;
    std::vector<Words> commands;
    int questions = 0;
};

class TmuxServersTest : public ::testing::Test {
protected:
    TmuxServersTest() {
        for (const char* name : {"sockets/default", "sockets/other", "sockets/third"})
            folder.makeFifo(name);
        ::chmod(sockets.c_str(), 0700);
    }

    std::optional<TmuxServers::Shown> show(const std::vector<std::int32_t>& processes) {
        return TmuxServers({folder.at("missing"), sockets}, tmux).show(processes);
    }

    TemporaryDirectory folder;
    std::string sockets = folder.makeDirectory("sockets");
    FakeTmux tmux;
};

TEST_F(TmuxServersTest, bringsThePaneToATerminal) {
    const Words window{"select-window", "-t", "$2:@2"};
    const Words pane{"select-pane", "-t", "%2"};
    const struct {
        const char* name;
        const char* clients;
        std::optional<std::int32_t> client;
        std::vector<Words> commands;
    } rows[] = {
        {"none", "", {}, {window, pane}},
        {"one that shows it",
         "70 5 $1 /dev/a\n71 1 $2 /dev/b\n72 3 $2 /dev/c\n",
         72,
         {window, pane}},
        {"one that shows another",
         "70 5 $1 /dev/a\n71 6 $1 /dev/b c\n",
         71,
         {window, pane, {"switch-client", "-c", "/dev/b c", "-t", "$2"}}},
        {"one of the group", "70 5 $9 /dev/a\n", 70, {{"select-window", "-t", "$9:@2"}, pane}},
    };
    tmux.answers["other list-panes"] =
        "20 %1 @1 $1 one\n30 %2 @2 $2 two\n30 %2 @2 $9 group\n40 %3 @2 $2 two\n";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        tmux.commands.clear();
        tmux.answers["other list-clients"] = row.clients;
        const auto shown = show({31, 30, 29});
        ASSERT_TRUE(shown);
        EXPECT_EQ(shown->client, row.client);
        EXPECT_EQ(tmux.commands, row.commands);
    }
}

TEST_F(TmuxServersTest, doesNothingWithoutThePane) {
    tmux.answers["default list-panes"] = "20 %1 @1 $1 one\n";
    EXPECT_FALSE(show({31}));
    EXPECT_EQ(tmux.questions, 3);
    EXPECT_TRUE(tmux.commands.empty());
}

TEST_F(TmuxServersTest, givesUpWhereServersDoNotAnswer) {
    tmux.missing = ProgramFailure::noAnswer;
    EXPECT_FALSE(show({31}));
    EXPECT_EQ(tmux.questions, 2);
}

TEST_F(TmuxServersTest, asksNoServersOfOthers) {
    ::chmod(sockets.c_str(), 0755);
    EXPECT_FALSE(show({31}));
    EXPECT_EQ(tmux.questions, 0);
}

TEST(TmuxServers, socketsAreWhereTmuxPutsThem) {
    const std::string name = "/tmux-" + std::to_string(::getuid());
    std::optional<std::string> chosen;
    const auto folders = [&] {
        return TmuxServers::socketFoldersOfThisUser([&](const std::string&) { return chosen; });
    };
    EXPECT_EQ(folders(), Words{"/tmp" + name});
    chosen = "/run/x";
    EXPECT_EQ(folders(), (Words{"/run/x" + name, "/tmp" + name}));
    chosen = "relative";
    EXPECT_EQ(folders(), Words{"/tmp" + name});
}

}  // namespace
}  // namespace fleetwise::testing
