#pragma once

#include "foundation/json.h"

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise::demo {

/// What the agent's registry says of a session.
enum class Standing { busy, idle, shell, asksPermission, asksInput, ended };

/// One moment in the life of a session.
struct Step {
    /// What the agent runs its hooks for; empty where only the registry tells, as of an interrupt.
    std::string_view event;
    /// The members of the event's payload that no other event has. Paths of files are relative to
    /// the session's folder.
    Json members = Json::object();
    Standing standing = Standing::busy;
    int rest = 0;  ///< how many of its turns the session then lets pass
};

struct Scene {
    std::string_view title;
    std::vector<Step> steps;
};

/// What sessions are seen doing: between them the scenes lead through every state. Each can follow
/// any other.
const std::vector<Scene>& scenes();

}  // namespace fleetwise::demo
