#pragma once

#include "demo/actor.h"
#include "demo/desktop_file.h"
#include "demo/hook_program.h"
#include "demo/registry_file.h"
#include "demo/session_play.h"
#include "demo/transcript_recorder.h"

#include <optional>

namespace fleetwise::demo {

/// A running session of Claude Code: what the agent would write it writes, and the hook program is
/// run for each event as the agent runs it.
class ClaudeActor final : public Actor {
public:
    /// `number` counts the actors from 0. `hookProgram` outlives this.
    ClaudeActor(const generator::SessionBook& book, RegistryFile registryFile, std::size_t number,
                std::uint64_t seed, const HookProgram& hookProgram);

    tl::expected<bool, std::string> act() override;

private:
    tl::expected<void, std::string> perform(const Step& step);

    const HookProgram& hook;
    SessionPlay play;
    TranscriptRecorder transcript;
    RegistryFile registry;
    std::optional<DesktopFile> desktop;
    Standing standing = Standing::ended;  ///< as the registry has it, once it was written
};

}  // namespace fleetwise::demo
