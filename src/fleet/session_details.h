#pragma once

#include "sources/subagent_files.h"
#include "sources/task_list_store.h"

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// What is read of one session only when the user looks at it: a plain value.
struct SessionDetails {
    using Task = TaskListStore::Item;
    using Subagent = SubagentFiles::Agent;  ///< started by the session for a part of its work

    std::optional<std::string> prompt;   ///< the user's latest, freed of markers
    std::optional<std::string> message;  ///< the agent's latest with prose; as the prompt shortened
    std::vector<Task> tasks;             ///< in the agent's order
    std::vector<Subagent> subagents;     ///< the latest first
    std::optional<std::string> transcriptPath;

    bool operator==(const SessionDetails&) const = default;
};

}  // namespace fleetwise
