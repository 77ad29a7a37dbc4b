#pragma once

#include "foundation/date.h"
#include "foundation/serial_queue.h"
#include "foundation/user_defaults.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Remembers in which application each session was last seen, beyond the end of its process and
/// across launches: for 90 days, at most 500 sessions. Any thread, but for the constructor.
///
/// File: {"version": 1, "entries": {session id: {"app", "bundleId", "seenAt"}}}.
class HostAppMemory {
public:
    struct Host {
        std::optional<std::string> app;  ///< display name
        std::optional<std::string> bundleId;
        Date seenAt;  ///< to the hour: a session seen again in the same host keeps its date

        bool operator==(const Host&) const = default;
    };
    using Hosts = std::map<std::string, Host>;  ///< by session id

    struct Sighting {
        std::string sessionId;
        std::optional<std::string> app;
        std::optional<std::string> bundleId;
    };

    /// On the main thread. `file` is read at first use. Pairs of session id and bundle id that an
    /// earlier version kept in the setting "hostBundleIds" move into the memory: the setting is
    /// removed once they are written. `settings` is not used afterwards.
    HostAppMemory(std::string file, UserDefaults& settings, Date now);

    /// Records where sessions are running. A sighting that tells no host changes nothing. The
    /// file is written in the background, at most once a minute.
    void remember(const std::vector<Sighting>& sightings, Date now);

    Hosts entries(Date now);

    /// Returns when everything recorded so far has been written, or could not be.
    void flush(Date now);

private:
    void migrate(UserDefaults& settings, Date now);
    void load(Date now);
    void postWriteLocked(Date now);

    /// Prunes, and takes everything as written.
    Hosts takeSnapshotLocked(Date now);

    std::string file;
    std::mutex lock;
    Hosts hosts;              ///< guarded by `lock`
    bool isDirty = false;     ///< changed since the last write; guarded by `lock`
    bool didLoad = false;     ///< guarded by `lock`
    Date lastWrite = Date();  ///< guarded by `lock`
    SerialQueue queue;        ///< writes the file; last, so that it finishes before the rest goes
};

}  // namespace fleetwise
