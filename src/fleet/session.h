#pragma once

#include "cost/transcript_reader.h"
#include "foundation/date.h"
#include "session/session_agent.h"
#include "session/session_origin.h"
#include "session/session_state.h"
#include "sources/background_task_store.h"
#include "sources/status_store.h"
#include "sources/task_list_store.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// What the list of sessions is grouped by.
enum class GroupMode { status, application, project, tool, federation };

/// One agent session as one collection pass found it: a plain value, compared by all its fields.
struct Session {
    std::string id;  ///< the agent's own session id: the identity of the row
    std::optional<std::int32_t> pid;
    SessionOrigin origin = SessionOrigin::unknown;
    SessionState state = SessionState::unknown;
    std::optional<std::string> title;         ///< from the desktop app or the transcript
    std::optional<std::string> name;          ///< given by the user
    std::optional<std::string> cwd;           ///< working directory: the project
    std::optional<std::string> model;         ///< id of the model reported last
    std::optional<std::string> desktopError;  ///< error code, see SessionError
    std::optional<std::string> effort;
    std::optional<std::string> permissionMode;  ///< raw, see PermissionMode
    std::optional<Date> startedAt;
    std::optional<Date> stateSince;
    std::optional<Date> lastEventAt;     ///< time of the last hook event
    std::optional<Date> lastActivityAt;  ///< the latest sign of life of any source
    std::optional<std::string> lastEvent;
    std::optional<Date> wakeupAt;
    std::optional<std::string> lastTool;
    std::optional<std::string> activity;
    std::optional<std::string> lastMessage;
    std::optional<Date> turnStartedAt;
    std::int64_t subagentCount = 0;
    SessionAgent agent;
    std::optional<std::int64_t> codexContextWindow;  ///< in tokens
    std::optional<std::string> hostApp;
    std::optional<std::string> hostBundleId;
    bool isFavorite = false;
    std::optional<TranscriptReader::Stats> stats;
    std::optional<TaskListStore::Progress> tasks;
    std::vector<StatusStore::Watch> monitors;  ///< oldest first
    std::optional<std::string> gitBranch;
    std::vector<BackgroundTask> backgroundTasks;  ///< oldest first
    bool isLive = false;                          ///< its agent process is alive
    std::optional<std::string> federationId;

    bool operator==(const Session&) const = default;

    /// The name of the row: the given name, the title (80 characters), the project's folder, or
    /// the first 8 characters of the id.
    std::string displayName() const;

    /// The last folder of the working directory; empty where none is known.
    std::string projectName() const;

    /// The working directory with the home folder as "~"; empty where none is known.
    std::string displayPath(const std::string& home) const;

    /// The one line below the name, in the interface language; empty where there is nothing to
    /// say beyond the state.
    std::string detail(Date now, Calendar calendar) const;

    /// The key of the session's group.
    std::string groupKey(GroupMode mode) const;

    /// The default order of rows: by state, favourites first, latest activity first, then by id.
    static bool precedes(const Session& left, const Session& right);

    /// No person started the latest turn.
    bool isSelfDriven() const;

    /// Live and busy, but without an event for so long that it may hang.
    bool isStale(Date now) const;

    std::vector<BackgroundTask> runningBackgroundTasks() const;

    /// The background tasks that failed, or lost their agent, within the last ten minutes.
    std::vector<BackgroundTask> recentlyFailedBackgroundTasks(Date now) const;

    /// The tokens that the context is measured against: `threshold` where given, else the window
    /// that Codex reports, else the usual window of Claude's models.
    std::int64_t contextLimit(std::optional<std::int64_t> threshold) const;

    /// How full the context is, 1 for full; above 1 beyond the threshold. Nothing where the
    /// session has told no usage yet.
    std::optional<double> contextFill(std::optional<std::int64_t> threshold) const;

    /// From when the row's running time counts.
    std::optional<Date> elapsedReference() const;
};

}  // namespace fleetwise
