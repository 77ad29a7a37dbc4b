#pragma once

#include "sources/process_table.h"

#include <map>

namespace fleetwise::testing {

struct FakeProcess {
    std::int32_t parent = 1;
    std::uint64_t start = 1;
    std::string executable;            ///< empty: the system does not tell
    std::optional<std::string> scope;  ///< the session manager's unit
};

/// A machine with exactly the processes that a test puts into it.
class FakeProcessTable final : public ProcessTable {
public:
    std::map<std::int32_t, FakeProcess> processes;  ///< by id

    bool exists(std::int32_t pid) const override { return processes.contains(pid); }

    std::optional<Process> process(std::int32_t pid) const override {
        const auto found = processes.find(pid);
        if (found == processes.end()) return {};
        return Process{.parent = found->second.parent, .start = found->second.start};
    }

    std::optional<std::string> executable(std::int32_t pid) const override {
        const auto found = processes.find(pid);
        if (found == processes.end() || found->second.executable.empty()) return {};
        return found->second.executable;
    }

    std::optional<std::string> applicationScope(std::int32_t pid) const override {
        const auto found = processes.find(pid);
        return found == processes.end() ? std::nullopt : found->second.scope;
    }
};

}  // namespace fleetwise::testing
