#pragma once

#include "foundation/json_reader.h"

#include <optional>
#include <string>

namespace fleetwise {

/// What a rollout's "item_completed" event says has just been done; the payload of one is given.
/// Texts are cut to 400 characters.
struct RolloutItem {
    std::optional<std::string> prompt;    ///< what the user typed
    std::optional<std::string> activity;  ///< a command, a thought, a word of the agent's

    static RolloutItem read(JsonObject& payload);
};

}  // namespace fleetwise
