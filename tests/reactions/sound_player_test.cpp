#include "reactions/sound_player.h"

#include "reactions/fake_child_processes.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <set>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Words = std::vector<std::string>;

class SoundPlayerTest : public ::testing::Test {
protected:
    SoundPlayerTest() {
        bell = folder.write("a/bell.oga", "");
        glass = folder.write("b/Glass.aiff", "");
        folder.write("b/bell.oga", "another");
        folder.write("b/.hidden.oga", "");
        folder.write("b/notes.txt", "");
        folder.makeDirectory("b/folder.oga");
        folder.makeLink("b/complete.oga", bell);
    }

    /// What was played since the last question, to its end.
    std::vector<Words> played() {
        while (!processes.running.empty())
            processes.endFirst(0);
        std::vector<Words> commands;
        for (const ChildCommand& command : processes.started) {
            EXPECT_FALSE(command.environment) << "players need to find the sound server";
            commands.push_back({command.executable});
            commands.back().insert(commands.back().end(), command.arguments.begin(),
                                   command.arguments.end());
        }
        processes.started.clear();
        return commands;
    }

    /// A pass in which one session went from one state to another.
    void change(std::optional<SessionState> from, SessionState to) {
        clock += Seconds(5);
        Session session;
        session.id = "s";
        session.state = to;
        const std::vector<Session> sessions{session, session};
        const std::vector<Transition> transitions{{&sessions[0], from}, {&sessions[1], from}};
        player.react({sessions, {}, transitions, rules, clock});
    }

    const TemporaryDirectory folder;
    std::string bell;
    std::string glass;
    FakeChildProcesses processes;
    std::set<std::string> programs{"paplay", "mpv"};
    SoundPlayer player{processes,
                       [this](const std::string& program) -> std::optional<std::string> {
                           if (!programs.contains(program)) return {};
                           return "/usr/bin/" + program;
                       },
                       {folder.at("a"), folder.at("missing"), folder.at("b")}};
    ReactionRules rules;
    Date clock = dateFromSeconds(1000);
};

TEST_F(SoundPlayerTest, playsByNameWithWhatIsThere) {
    EXPECT_THAT(player.available(), ElementsAre("Glass", "bell", "complete"));
    player.play("bell", clock);
    EXPECT_THAT(played(), ElementsAre(Words{"/usr/bin/paplay", bell}));
    player.play("bell", clock + Seconds(0.9));
    EXPECT_THAT(played(), IsEmpty()) << "it has just begun";
    player.play("Glass", clock + Seconds(0.9));
    player.play("bell", clock + Seconds(1));
    EXPECT_EQ(played().size(), 2U);
    player.play("bell", clock - Seconds(60));
    EXPECT_EQ(played().size(), 1U) << "the clock was set back";
    player.play("bell", clock + Seconds(10));
    player.play("bell", clock + Seconds(20));
    player.play("bell", clock + Seconds(40));
    EXPECT_EQ(played().size(), 2U) << "a player may hang";

    programs = {"mpv", "ffplay"};
    player.play("Glass", clock + Seconds(60));
    EXPECT_THAT(played(),
                ElementsAre(Words{"/usr/bin/mpv", "--no-video", "--really-quiet", glass}));
    programs.clear();
    player.play("Glass", clock + Seconds(120));
    programs = {"ffplay"};
    player.play("Glass", clock + Seconds(120));
    EXPECT_EQ(played().size(), 1U) << "what did not play does not count";
    for (const std::string& name :
         {std::string(), std::string(SoundPlayer::none), std::string("unknown"),
          std::string("../a/bell"), std::string(".hidden"), std::string("notes.txt"),
          std::string("bell\0", 5)}) {
        player.play(name, clock + Seconds(500));
    }
    EXPECT_THAT(played(), IsEmpty());
}

TEST_F(SoundPlayerTest, soundsWhenSomethingIsDoneOrAsked) {
    rules.doneSound = "bell";
    rules.waitingSound = "Glass";
    const Words done{"/usr/bin/paplay", bell};
    const Words asked{"/usr/bin/paplay", glass};
    change(SessionState::working, SessionState::done);
    EXPECT_THAT(played(), ElementsAre(done)) << "once for both sessions";
    change(SessionState::working, SessionState::waiting);
    EXPECT_THAT(played(), ElementsAre(asked));
    change(SessionState::waiting, SessionState::decision);
    EXPECT_THAT(played(), ElementsAre(asked));

    change({}, SessionState::done);
    change(SessionState::done, SessionState::working);
    rules.overrides = {{"s:s", false}};
    change(SessionState::working, SessionState::done);
    rules.overrides.clear();
    rules.isMuted = true;
    change(SessionState::working, SessionState::done);
    EXPECT_THAT(played(), IsEmpty());
}

}  // namespace
}  // namespace fleetwise::testing
