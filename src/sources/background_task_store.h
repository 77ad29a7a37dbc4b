#pragma once

#include "foundation/date.h"
#include "sources/background_task.h"
#include "sources/status_store.h"
#include "sources/task_ending.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace fleetwise {

/// The folder in which Claude Code keeps "<id>.output" of a session's background commands, for
/// the user with the id `uid`; `projectFolder` is the name of the
/// folder that the session's transcript lies in. Nothing where the names make no path.
std::optional<std::string> backgroundOutputDirectory(const std::string& sessionId,
                                                     const std::string& projectFolder,
                                                     std::uint32_t uid);

/// What has become of the sessions' background commands. The hook lists what was launched and
/// not yet taken off its list; the store remembers what it saw running, so that the end of a
/// command shows for a while. Any thread.
class BackgroundTaskStore {
public:
    using Launches = std::map<std::string, StatusStore::Launch>;  ///< by the command's id

    /// What a session's other sources tell.
    struct Surroundings {
        bool agentIsLive = false;
        std::optional<Date>
            lastActivityAt;  ///< the session's: when an agent that is gone was there
        std::optional<std::string> outputDirectory;  ///< holds "<id>.output"
        /// The agent's own notices by the command's id; may be null, and need only live during the
        /// call.
        const std::map<std::string, TaskEnding>* endings = nullptr;
    };

    /// How long a task is listed after its end.
    static constexpr Seconds recentlyEnded = Seconds(600);

    /// The session's running and recently ended tasks by start, then id; those without a start
    /// come first.
    std::vector<BackgroundTask> tasks(const std::string& sessionId, const Launches& launches,
                                      const Surroundings& around, Date now);

    /// Forgets the tasks of all other sessions.
    void prune(const std::set<std::string>& keepingSessionIds);

private:
    using Tasks = std::map<std::string, BackgroundTask>;  ///< by id

    Tasks remembered(const std::string& sessionId);
    void replace(const std::string& sessionId, Tasks tasks);

    std::mutex lock;
    std::unordered_map<std::string, Tasks> sessions;  ///< guarded by `lock`
};

}  // namespace fleetwise
