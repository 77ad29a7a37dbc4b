#pragma once

#include "sources/process_table.h"

#include <algorithm>
#include <map>

namespace fleetwise::testing {

struct FakeProcess {
    std::int32_t parent = 1;
    std::uint64_t start = 1;
    std::string executable;            ///< empty: the system does not tell
    std::optional<std::string> scope;  ///< the session manager's unit
    std::optional<Date> startedAt;
    std::optional<std::string> cwd;
    std::vector<std::string> openFiles;
};

/// A machine with exactly the processes that a test puts into it.
class FakeProcessTable : public ProcessTable {
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

    std::vector<std::int32_t> processesOf(
        std::span<const std::string_view> fileNames) const override {
        std::vector<std::int32_t> pids;
        for (const auto& [pid, process] : processes) {
            std::string_view name = process.executable;
            name.remove_prefix(name.find_last_of('/') + 1);
            if (std::find(fileNames.begin(), fileNames.end(), name) != fileNames.end())
                pids.push_back(pid);
        }
        return pids;
    }

    std::optional<Date> startedAt(std::int32_t pid) const override {
        const auto found = processes.find(pid);
        return found == processes.end() ? std::nullopt : found->second.startedAt;
    }

    std::optional<std::string> workingDirectory(std::int32_t pid) const override {
        const auto found = processes.find(pid);
        return found == processes.end() ? std::nullopt : found->second.cwd;
    }

    std::vector<std::string> openFiles(std::int32_t pid) const override {
        const auto found = processes.find(pid);
        return found == processes.end() ? std::vector<std::string>() : found->second.openFiles;
    }
};

}  // namespace fleetwise::testing
