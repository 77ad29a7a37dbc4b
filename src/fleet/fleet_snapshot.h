#pragma once

#include "cost/transcript_reader.h"
#include "fleet/session.h"
#include "foundation/skip_tally.h"
#include "sources/background_task_store.h"
#include "sources/codex_processes.h"
#include "sources/codex_rollouts.h"
#include "sources/desktop_metadata_store.h"
#include "sources/git_store.h"
#include "sources/process_table.h"
#include "sources/process_tree.h"
#include "sources/task_list_store.h"

#include <array>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

/// One collection pass over all sources: their files in, one sorted list of sessions out. Any
/// thread may run a pass, and several at once.
class FleetSnapshot {
public:
    struct Input {
        /// How far back ended sessions are listed; nothing: no limit; 0: only the kept ones.
        std::optional<Seconds> dormantMaxAge;
        /// Ids that the user removed from the list. A session whose process runs is listed
        /// nevertheless: it may have a question.
        std::set<std::string> dismissed;
        /// The favourites: listed as dormant whatever their age.
        std::set<std::string> keepRegardlessOfAge;
        /// How long a finished session keeps its claim on attention.
        Seconds doneGracePeriod{0};
        bool includeStats = true;
        bool showsCodex = true;
        /// What runs, as fast as it can be told: ended sessions, statistics and pruning are left to
        /// a later pass.
        bool isPreview = false;
    };

    /// Where a pass reads, and the stores that remember what it read before. All outlive it.
    struct Sources {
        std::string statusDirectory;
        std::string sessionsDirectory;
        std::string projectsDirectory;
        std::string desktopDirectory;  ///< the desktop app's session metadata
        std::string codexDirectory;    ///< ~/.codex
        std::uint32_t userId = 0;      ///< part of the place of background output
        const ProcessTable& processes;
        ProcessTree& processTree;
        TranscriptReader& transcripts;
        TaskListStore& tasks;
        BackgroundTaskStore& backgroundTasks;
        GitStore& git;
        DesktopMetadataStore& desktop;
        CodexRollouts& rollouts;
        CodexProcesses& codexProcesses;
    };

    /// Phase name and milliseconds.
    using Timing = std::pair<std::string, double>;

    /// What passes share: process-wide through Sources of one run, or a test's own.
    struct Shared {
        std::mutex lock;
        std::vector<Timing> timings;  ///< of the last pass, in order; guarded by `lock`
        Date lastPrune;               ///< guarded by `lock`

        /// Whether `every` has passed since the last pruning; if so this one is it. Of passes at
        /// the same moment only one is told to prune.
        bool shouldPrune(Date now, Seconds every);
    };

    /// What became of Codex's files.
    struct CodexFiles {
        std::size_t sessions = 0;    ///< rollouts of sessions
        std::size_t branches = 0;    ///< rollouts of forks and subagents
        std::size_t compressed = 0;  ///< not opened
    };

    /// What a pass found.
    struct Collection {
        std::vector<Session> sessions;  ///< sorted by Session::precedes
        /// The sessions left out because they are dismissed, which still exist, and their states.
        std::map<std::string, SessionState> leftOut;
        /// Ended sessions were looked for and their files could be listed: what is neither listed
        /// nor left out is gone.
        bool searchedEnded = true;
        /// Ids whose title is the desktop app's.
        std::set<std::string> titledByDesktop;
        CodexFiles codexFiles;
        /// Some state is settled only later: another pass is wanted after this time.
        std::optional<Seconds> recheckIn;
        std::vector<std::pair<std::string, SkipTally>> skipped;  ///< per source, where any were
    };

    static Collection collect(const Input& input, const Sources& sources, Shared& shared, Date now);

    /// A working or finished session with subagents whose last event is at most 1200 s old waits
    /// for them.
    static SessionState waitingForSubagents(SessionState state, std::int64_t subagents,
                                            std::optional<Date> lastEventAt, Date now);

    /// The states that a planned wake-up takes precedence over.
    static constexpr std::array yieldsToSchedule{SessionState::waiting, SessionState::done,
                                                 SessionState::idle};

    /// `scheduled` while a planned wake-up lies ahead of a state that yields to it.
    static SessionState effectiveState(SessionState state, std::optional<Date> wakeupAt, Date now);

    static std::vector<Session> withoutCodex(std::vector<Session> sessions);
};

}  // namespace fleetwise
