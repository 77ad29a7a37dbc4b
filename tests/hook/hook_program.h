#pragma once

#include "sources/status_store.h"
#include "support/temporary_directory.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace fleetwise::testing {

/// The real hook program on a home of its own.
class HookProgram {
public:
    /// Starts it with an event and its JSON; the caller waits for it.
    pid_t start(const std::string& event, const std::string& payload) const;

    /// Runs it to its end and returns the exit status, −1 where a signal ended it. Anything it
    /// prints fails the test.
    int run(const std::string& event, const std::string& payload) const;

    /// The status file of a session as the application reads it.
    std::optional<StatusStore::Record> record(const std::string& sessionId) const;

    /// Names in a folder of the state folder, sorted.
    std::vector<std::string> names(const std::string& folder) const;

    const TemporaryDirectory home;
};

/// Waits for the process; its exit status, −1 where a signal ended it.
int exitStatusOf(pid_t process);

}  // namespace fleetwise::testing
