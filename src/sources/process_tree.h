#pragma once

#include "sources/host_applications.h"
#include "sources/process_table.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fleetwise {

/// Which application a process runs in. Any thread.
class ProcessTree {
public:
    /// `table` outlives the tree. `applicationFolders` hold the desktop files that applications
    /// are named after (DesktopEntry::applicationFolders).
    ProcessTree(const ProcessTable& table, std::vector<std::string> applicationFolders);

    /// The graphical application among the ancestors of the process: the nearest that is a known
    /// terminal or editor, else the one whose unit of the session manager it runs in. Nothing
    /// where there is neither, or no such process. Found out once per process.
    std::optional<HostApplication> guiAncestor(std::int32_t pid);

    /// Forgets what was found out about all other processes.
    void forgetAllBut(const std::set<std::int32_t>& pids);

private:
    struct Known {
        std::uint64_t start = 0;  ///< of the process, which a later one with its id does not share
        std::optional<HostApplication> host;
    };

    std::optional<HostApplication> findHost(std::int32_t pid) const;

    const ProcessTable& table;
    std::vector<std::string> applicationFolders;
    std::mutex lock;
    std::map<std::int32_t, Known> known;  ///< by process id; guarded by `lock`
};

}  // namespace fleetwise
