#pragma once

#include "foundation/date.h"
#include "foundation/skip_tally.h"
#include "sources/process_table.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Claude Code's registry of its running processes: one JSON file "<pid>.json" each, rewritten on
/// every change, removed at a regular end and left behind by a kill. Any thread.
class SessionRegistry {
public:
    struct Entry {
        std::int32_t pid = 0;             ///< of the agent, positive
        std::string sessionId;            ///< never empty
        std::optional<std::string> cwd;   ///< working directory
        std::optional<double> startedAt;  ///< milliseconds of the agent's own clock
        std::optional<std::string> version;
        std::optional<std::string> kind;        ///< "interactive", …
        std::optional<std::string> entrypoint;  ///< raw; see sessionOriginFrom
        std::optional<std::string> name;        ///< raw; see userGivenName
        std::optional<std::string> nameSource;  ///< "user", or "derived" for a made-up name
        std::optional<std::string> messagingSocketPath;

        // Newer agents only.
        std::optional<std::string> status;      ///< "idle", "busy", "waiting" or "shell"
        std::optional<std::string> waitingFor;  ///< "permission prompt", "input needed", …
        std::optional<Date> statusUpdatedAt;
        std::optional<std::uint64_t> procStart;  ///< as ProcessTable::Process::start

        bool operator==(const Entry&) const = default;

        /// The session's name where the user gave it one; a made-up name is none.
        std::optional<std::string> userGivenName() const;
    };

    /// The entries in `directory` whose process is alive, ordered by process id; of several for
    /// one session the newest. A process that was given the id of a dead agent does not count.
    /// Files are read again only when they changed; what cannot be read is counted in `skipped`.
    static std::vector<Entry> liveEntries(const std::string& directory,
                                          const ProcessTable& processes, SkipTally& skipped);

    /// The entry in the text of a registry file, which jsonPadding readable bytes must follow.
    /// Nothing without a usable `pid` and `sessionId`; any other key of a wrong type counts as
    /// absent, for the format changes with the agent's versions.
    static std::optional<Entry> decode(std::string_view padded);
};

}  // namespace fleetwise
