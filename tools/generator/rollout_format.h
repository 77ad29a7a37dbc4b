#pragma once

#include "generator/books.h"

#include <string>
#include <string_view>

namespace fleetwise::generator {

/// The path of a rollout below the folder `.codex`, as its id and its start in `calendar` name it.
std::string rolloutPath(const std::string& codexFolder, const RolloutBook& book, Calendar calendar);

/// A line up to its payload; "}" and a line feed end it.
std::string rolloutLineHead(Date time, int ordinal, std::string_view type);

/// The payload of a rollout's first line. `instructions` is the inside of a JSON string.
std::string sessionMetaPayload(const RolloutBook& book, std::string_view instructions);

/// What a sub-agent that is begun at `time` is given of its parent's rollout: the first lines.
std::string_view inheritedBySubagent(std::string_view parentRollout, Date time);

/// A line of the session index, which says that the session was given the name `name`.
std::string renamingLine(const RolloutBook& book, std::string_view name);

}  // namespace fleetwise::generator
