#pragma once

#include "fleet/codex_threads.h"
#include "fleet/fleet_snapshot.h"
#include "fleet/session_builder.h"
#include "sources/session_history.h"
#include "sources/status_store.h"

#include <chrono>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace fleetwise {

/// The phases of one collection pass, in the order they are to be called, and what they gather.
/// Lives for one pass on one thread.
class CollectionPass {
public:
    CollectionPass(const FleetSnapshot::Input& input, const FleetSnapshot::Sources& sources,
                   Date now);

    /// Runs a phase and notes its time under `name`.
    template <typename Phase>
    void time(const char* name, Phase&& phase) {
        const auto start = std::chrono::steady_clock::now();
        phase();
        const std::chrono::duration<double, std::milli> taken =
            std::chrono::steady_clock::now() - start;
        timings.emplace_back(name, taken.count());
    }

    void loadDesktopMetadata();
    void loadStatusRecords();
    void addLiveSessions();
    void addDormantSessions();
    void addCodexSessions();
    void addForeignSessions();
    void hideCodex();

    /// Adds what transcripts, task lists, background output and repositories tell.
    void describeSessions();

    /// Deletes old status files of sessions not listed and drops what the stores remember of
    /// others.
    void prune();

    void sort();

    std::vector<FleetSnapshot::Timing> takeTimings() { return std::move(timings); }
    FleetSnapshot::Collection takeCollection();

private:
    bool isListed(const std::string& id) const { return listed.contains(id); }
    /// False, with the id noted as left out, for a dismissed session.
    bool mayList(const std::string& id, SessionState state);
    bool isRecentEnough(const Session& session) const;
    bool isRolloutWished(const FoundFile& file, const std::vector<CodexProcess>& processes) const;
    bool isEndedSessionOfKnownAgent(const StatusStore::Record& record) const;
    void add(Session session);

    const StatusStore::Record* recordOf(const std::string& id) const;
    /// The session's own, but a fork's or a subagent's that asks the user something and has done
    /// nothing since.
    const StatusStore::Record* recordOf(const CodexThread& thread) const;
    const DesktopMetadata* desktopOf(const std::string& id) const;

    std::optional<TranscriptFile> transcriptOf(const Session& session) const;
    /// The name of the agent's folder for the session's project.
    std::string projectFolderOf(const Session& session) const;
    void findHost(Session& session);
    /// Looked up once per folder.
    const std::optional<std::string>& branchOf(const std::string& cwd);
    /// The endings of background tasks that the transcript tells, none without one.
    std::map<std::string, TaskEnding> describeFromTranscript(Session& session,
                                                             const TranscriptFile& file);
    void describeBackground(Session& session, const std::map<std::string, TaskEnding>& endings);

    const FleetSnapshot::Input& input;
    const FleetSnapshot::Sources& sources;
    const Date now;
    const BuildingRules rules;

    DesktopSessions desktopSessions;
    StatusStore::Records records;
    TranscriptIndex transcripts;
    std::unordered_set<std::string> listed;
    std::unordered_set<std::string> unlistedRollouts;                      ///< ids
    std::unordered_map<std::string, std::optional<std::string>> branches;  ///< by folder
    bool isUnsettled = false;

    SkipTally skippedDesktop;
    SkipTally skippedStatus;
    SkipTally skippedRegistry;
    SkipTally skippedTranscripts;
    SkipTally skippedTasks;
    SkipTally skippedRollouts;

    FleetSnapshot::Collection collection;
    std::vector<FleetSnapshot::Timing> timings;
};

}  // namespace fleetwise
