#pragma once

#include "foundation/date.h"

#include <optional>

namespace fleetwise {

/// How a background task ended, as the transcript reports it.
struct TaskEnding {
    enum class Outcome { completed, failed };

    Outcome outcome = Outcome::completed;
    std::optional<int> exitStatus;  ///< of a command, where the report names one
    std::optional<Date> at;         ///< when the report was written

    bool operator==(const TaskEnding&) const = default;
};

}  // namespace fleetwise
