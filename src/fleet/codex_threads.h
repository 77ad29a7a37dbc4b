#pragma once

#include "foundation/date.h"
#include "foundation/file_search.h"
#include "sources/codex_processes.h"
#include "sources/codex_rollout.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// A session of the user's in Codex, with what its forks and subagents add to it.
struct CodexThread {
    /// A fork or a subagent of the session, or one of theirs.
    struct Branch {
        std::string sessionId;
        Date lastEventAt;
    };

    /// Where a running fork goes on with the session, all but who the session is (id, file, start,
    /// first prompt, name if it has one) is the fork's.
    CodexRollout rollout;
    bool isLive = false;
    std::optional<std::int32_t> pid;  ///< where a running process is known to be the session's
    std::int64_t runningSubagents = 0;
    Date lastActivityAt;
    std::vector<Branch> branches;
};

/// Whether what a session was heard of at `date` may still go on: for five minutes.
bool isRecentWork(Date date, Date now);

/// Whether the session of a rollout may be running, judged before the file is opened.
bool mayBeLive(const FoundFile& rollout, const std::vector<CodexProcess>& processes, Date now);

/// The sessions among `rollouts`, which stand latest event first, in that order. One is live
/// - when a Codex process holds its rollout open,
/// - else when one that holds none open works in its folder and has been running since before the
///   rollout was last written; of several such rollouts it is the one with the latest event of
///   those begun while the process ran, else of all. The process begun last chooses first,
/// - else when it is busy and its last event is at most five minutes old.
/// Forks and subagents are no sessions of their own: they count for the session that they come
/// from, and for none where that is not among `rollouts`.
std::vector<CodexThread> codexThreads(std::vector<CodexRollout> rollouts,
                                      const std::vector<CodexProcess>& processes, Date now);

}  // namespace fleetwise
