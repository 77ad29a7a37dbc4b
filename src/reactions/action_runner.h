#pragma once

#include "foundation/date.h"
#include "reactions/child_processes.h"
#include "reactions/fleet_reaction.h"
#include "reactions/state_action.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Runs the user's state actions, and keeps a log of what ran and how it ended. So many run at
/// once and no more; the next ones wait for them. Main thread only.
class ActionRunner final : public FleetReaction {
public:
    struct Entry {
        std::string id;  ///< a UUID
        Date at;         ///< of the start, or of the attempt
        SessionState state = SessionState::unknown;
        std::string sessionId;
        std::string executable;  ///< of an action that has no plan: its command
        std::vector<std::string> arguments;
        std::optional<std::int32_t> exitCode;  ///< nothing while it runs
        std::optional<std::string> failure;    ///< why it could not be started, for the user
    };

    static constexpr std::size_t maximumEntries = 200;
    static constexpr std::size_t maximumRunning = 32;
    static constexpr std::size_t maximumWaiting = 1000;  ///< what comes beyond is only logged
    /// What has waited longer is only logged: it would answer to a state long left.
    static constexpr Seconds longestWait{60};

    /// All that is given outlives this.
    ActionRunner(ChildProcesses& processes, std::function<Date()> now,
                 StateAction::FileSystem fileSystem = StateAction::lookAtDisk);

    /// Runs what the transitions ask for, and forgets sessions that are gone.
    void react(const FleetChange& change) override;

    /// Runs the actions of the state that the session enters, in their order; nothing where it was
    /// the last state that actions were looked for. What cannot run is logged.
    void run(const std::vector<StateAction>& actions, const std::string& sessionId,
             SessionState entering);

    void start(const StateAction::Plan& plan, SessionState state, const std::string& sessionId);

    /// Drops what is known of these sessions.
    void forget(const std::vector<std::string>& sessionIds);

    /// The newest last, at most `maximumEntries`.
    const std::deque<Entry>& log() const { return entries; }

private:
    struct Request {
        StateAction::Plan plan;
        SessionState state = SessionState::unknown;
        std::string sessionId;
        Date at;
    };

    void dropWhatWaitedTooLong();
    void launch(const Request& request);
    void finish(const std::string& entryId, std::int32_t exitCode);
    void remember(const Request& request, std::string id, std::optional<std::string> failure);

    ChildProcesses& processes;
    std::function<Date()> now;
    StateAction::FileSystem fileSystem;
    std::deque<Entry> entries;
    std::map<std::string, SessionState> lastRun;  ///< by session id
    std::deque<Request> waiting;                  ///< the next one first
    std::size_t running = 0;
    const std::shared_ptr<bool> aliveToken = std::make_shared<bool>(true);
};

}  // namespace fleetwise
