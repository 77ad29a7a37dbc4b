#pragma once

#include "demo/demo_home.h"
#include "demo/registry_file.h"
#include "demo/session_play.h"
#include "demo/transcript_tail.h"

#include <string>
#include <vector>

namespace fleetwise::demo {

/// Plays the running sessions of a home, in turns: what the agent would write it writes, and the
/// hook program is run for each event as the agent runs it.
class Player {
public:
    Player(const DemoHome& home, std::string hookProgram, std::uint64_t seed);

    /// Lets one session take its next step. The error is a message.
    tl::expected<void, std::string> playNext();

private:
    struct Actor {
        SessionPlay play;
        TranscriptTail transcript;
        RegistryFile registry;
        Standing standing = Standing::ended;  ///< as the registry has it, once it was written
    };

    tl::expected<void, std::string> perform(Actor& actor, const Step& step);

    std::string hookProgram;
    std::vector<std::string> environment;
    std::vector<Actor> actors;
    std::size_t turn = 0;
};

}  // namespace fleetwise::demo
