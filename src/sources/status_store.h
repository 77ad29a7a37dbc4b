#pragma once

#include "foundation/date.h"
#include "foundation/skip_tally.h"
#include "session/session_state.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace fleetwise {

/// The status files that the hook program writes: one JSON object per session, replaced as a whole
/// on each event of the agent. Any thread.
class StatusStore {
public:
    /// A command that runs in the background.
    struct Launch {
        std::optional<std::string> cmd;  ///< the command line
        std::optional<Date> at;          ///< when it was started

        bool operator==(const Launch&) const = default;
    };

    /// One element of a watch as the hook writes it: its label or the time it began.
    using MonitorField = std::variant<std::string, double>;

    /// A running watch.
    struct Watch {
        std::string label;  ///< may be empty
        Date since;

        bool operator==(const Watch&) const = default;
    };

    /// One status file. Times stand in the file as seconds since 1970-01-01 UTC; `session_id`,
    /// `state` and `ts` are always there.
    struct Record {
        std::string sessionId;                      ///< never empty
        std::string state;                          ///< raw; see repairedState
        std::optional<std::string> event;           ///< the event that wrote the file
        std::optional<std::string> agent;           ///< raw; see SessionAgent
        std::optional<std::string> tool;            ///< the tool in use
        std::optional<std::string> activity;        ///< what it does, one short line
        std::optional<std::string> message;         ///< the last notification or question
        std::optional<std::string> cwd;             ///< working directory
        Date ts;                                    ///< when the hook wrote the file
        std::optional<Date> eventTs;                ///< when the event happened
        std::optional<std::string> permissionMode;  ///< raw; see PermissionMode
        std::optional<Date> turnStartedAt;
        std::optional<Date> doneAt;
        std::optional<std::int64_t> subagents;                      ///< how many are still running
        std::map<std::string, Launch> background;                   ///< by the command's id
        std::map<std::string, std::vector<MonitorField>> monitors;  ///< by the watch's id
        std::optional<Date> wakeupAt;  ///< when a scheduled session goes on
        std::optional<Date> stateTs;   ///< time of the event that last spoke for the state

        bool operator==(const Record&) const = default;
    };

    /// Session id to record.
    using Records = std::unordered_map<std::string, std::shared_ptr<const Record>>;

    /// The records of all status files in the folder, which are read again only when they changed.
    /// The record names its session, not the file; of several records of one session the last
    /// listed counts. What cannot be read is counted in `skipped` and tried again the next time.
    static Records load(const std::string& directory, SkipTally& skipped);

    /// The record in the text of a status file, which jsonPadding readable bytes must follow.
    /// Nothing where a required key is missing or a known key has a wrong type; null counts as
    /// absent, and unknown keys are ignored.
    static std::optional<Record> decode(std::string_view padded);

    /// The state that a record's raw values stand for. A session that is "working" since its last
    /// subagent stopped is done; a state that is not known is `unknown`.
    static SessionState repairedState(std::string_view state,
                                      const std::optional<std::string>& event,
                                      std::optional<std::int64_t> subagents);

    /// The record's watches, oldest first; no record has none. A watch without a time is left out.
    static std::vector<Watch> watches(const Record* record);

    /// Deletes the status files that were last written more than `olderThan` before `now`, but for
    /// those of the sessions in `keeping`, and what the hook left of them in the folder "locks"
    /// beside `directory`. Folders and links are never deleted.
    static void prune(const std::set<std::string>& keeping, Seconds olderThan,
                      const std::string& directory, Date now);
};

}  // namespace fleetwise
