#pragma once

#include "demo/actor.h"
#include "demo/demo_home.h"
#include "demo/hook_program.h"

#include <memory>
#include <string>
#include <vector>

namespace fleetwise::demo {

/// Plays the running sessions of a home, in turns.
class Player {
public:
    /// `home` outlives this.
    Player(const DemoHome& home, const std::string& hookProgram, std::uint64_t seed);
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Has Codex sessions play as well, each with a process that runs a copy of `standIn`. The
    /// error is a message.
    tl::expected<void, std::string> addCodex(const std::string& standIn);

    /// Lets one session take its next step. The error is a message.
    tl::expected<void, std::string> playNext();

private:
    const DemoHome& home;
    const HookProgram hook;
    const std::uint64_t seed;
    std::vector<std::unique_ptr<Actor>> actors;
    std::size_t turn = 0;
};

}  // namespace fleetwise::demo
