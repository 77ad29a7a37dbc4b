#pragma once

#include "sources/status_store.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise::testing {

/// The status files of sessions as the hook program's rules write them, without the program.
class HookReplay {
public:
    /// Applies an event with its JSON at a time in seconds since 1970; the session is the one that
    /// the JSON names.
    void apply(std::string_view event, const std::string& payload, double now);

    /// What the application reads from the session's status file; nothing without a file.
    std::optional<StatusStore::Record> record(const std::string& sessionId) const;

    /// What it reads, in one line: the state it shows, the count of subagents, and the texts,
    /// commands, watches and wake-up that are there. "no file" without one.
    std::string describe(const std::string& sessionId) const;

private:
    std::map<std::string, std::string> files;  ///< session id to the file's text
};

}  // namespace fleetwise::testing
