#pragma once

#include "foundation/json_reader.h"

#include <cstddef>
#include <optional>
#include <string>

namespace fleetwise {

/// What a rollout's "item_completed" event says has just been done; the payload of one is given.
struct RolloutItem {
    std::optional<std::string> prompt;    ///< what the user typed
    std::optional<std::string> activity;  ///< a command, a thought, a word of the agent's

    /// For a row.
    static constexpr std::size_t usualLimit = 400;

    /// Texts are cut to `textLimit` characters.
    static RolloutItem read(JsonObject& payload, std::size_t textLimit = usualLimit);
};

}  // namespace fleetwise
