#pragma once

#include "demo/actor.h"
#include "demo/codex_stand_in.h"
#include "demo/rollout_recorder.h"

#include <memory>
#include <optional>

namespace fleetwise::demo {

/// A running session of Codex: its process and what it writes. At times a sub-agent of it is at
/// work.
class CodexActor final : public Actor {
public:
    struct Part {
        std::string home;
        std::string standIn;  ///< the program whose copy is run
        std::string cwd;
        std::string name;            ///< given by the user; may be empty
        std::size_t firstScene = 0;  ///< wraps around
        std::uint64_t seed = 1;
    };

    /// The error is a message.
    static tl::expected<std::unique_ptr<CodexActor>, std::string> start(const Part& part);

    tl::expected<bool, std::string> act() override;

private:
    CodexActor(const Part& part, RolloutRecorder rollout, CodexStandIn process);

    const CodexStep& nextStep();
    RolloutRecorder newSubagent();

    std::string codexFolder;
    generator::Random random;
    RolloutRecorder rollout;
    std::optional<RolloutRecorder> subagent;  ///< the last one
    CodexStandIn process;
    std::size_t scene;
    std::size_t step = 0;
    int restLeft = 0;
};

}  // namespace fleetwise::demo
