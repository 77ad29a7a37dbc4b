#pragma once

#include "demo/scenes.h"
#include "generator/books.h"
#include "generator/random.h"

namespace fleetwise::demo {

/// One session on its way through the scenes.
class SessionPlay {
public:
    /// `firstScene` counts from 0 and wraps around.
    SessionPlay(const generator::SessionBook& book, std::size_t firstScene, std::uint64_t seed);

    /// The next step; nothing while the session rests.
    const Step* next();

    /// The scene of the last step.
    const Scene& scene() const { return scenes()[sceneIndex]; }

    /// The payload that the agent hands to the hooks of `step`, now.
    Json payload(const Step& step, Date now);

private:
    std::string sessionId;
    std::string cwd;
    std::string transcriptPath;
    std::string permissionMode;
    generator::Random random;
    std::size_t sceneIndex;
    std::size_t stepIndex = 0;
    int restLeft = 0;
    std::string promptId;
    std::string toolUseId;
};

}  // namespace fleetwise::demo
