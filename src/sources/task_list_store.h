#pragma once

#include "foundation/skip_tally.h"
#include "sources/record_cache.h"

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// The task lists Claude Code keeps for its sessions: a folder per session, "<n>.json" per task
/// with `subject`, `activeForm` and `status` "pending", "in_progress" or "completed". Any thread.
class TaskListStore {
public:
    enum class Status { pending, inProgress, completed };

    struct Item {
        std::string subject;  ///< may be empty
        Status status = Status::pending;

        bool operator==(const Item&) const = default;
    };

    struct Progress {
        int total = 0;
        int completed = 0;
        int inProgress = 0;
        /// What is being done: of the task in progress with the lowest number.
        std::optional<std::string> activeForm;

        bool operator==(const Progress&) const = default;
    };

    /// `directory` holds the sessions' folders.
    explicit TaskListStore(std::string directory);

    /// Nothing where the session has no task that can be read.
    std::optional<Progress> progress(const std::string& sessionId, SkipTally& skipped);

    /// The session's tasks by their numbers; those given up are left out.
    std::vector<Item> list(const std::string& sessionId, SkipTally& skipped);

private:
    struct Task;

    /// The records of the session's folder; none where there is no such folder.
    std::vector<RecordCache<Task>::Loaded> load(const std::string& sessionId, SkipTally& skipped);

    std::string directory;
    RecordCache<Task> cache;
};

}  // namespace fleetwise
