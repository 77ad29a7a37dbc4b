#pragma once

#include "foundation/date.h"
#include "sources/process_table.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fleetwise {

/// A running Codex process of this user.
struct CodexProcess {
    std::int32_t pid = 0;
    std::optional<Date> startedAt;
    std::optional<std::string> cwd;
    std::set<std::string> openRollouts;  ///< file names of the rollouts it holds open, no folders

    bool operator==(const CodexProcess&) const = default;
};

/// Finds the running Codex processes. Codex keeps no list of them: whether one of its sessions is
/// live shows only in a process that holds the session's rollout open or works in its folder.
/// Any thread.
class CodexProcesses {
public:
    /// `givenTable` outlives this.
    explicit CodexProcesses(const ProcessTable& givenTable);

    /// The processes by ascending id. What was found less than a second before `now` is given
    /// again without a look at the machine; a clock that went back looks again.
    std::vector<CodexProcess> observe(Date now);

private:
    struct Look {
        Date at;
        std::vector<CodexProcess> found;
    };

    const ProcessTable& table;
    std::mutex lock;
    std::optional<Look> lastLook;  ///< guarded by `lock`
};

}  // namespace fleetwise
