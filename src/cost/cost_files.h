#pragma once

#include "foundation/date.h"
#include "foundation/file_search.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace fleetwise {

/// The files that one session's usage stands in, as a listing found them.
struct CostFiles {
    std::vector<FoundFile> own;        ///< the session's transcript or rollout; mostly one
    std::vector<FoundFile> subagents;  ///< transcripts of its subagents, by name

    std::uint64_t bytes() const;

    /// Calls `visit(FoundFile&)` for all of them.
    template <typename Visit>
    void forEach(Visit&& visit) const {
        for (const auto* files : {&own, &subagents}) {
            for (const FoundFile& file : *files)
                visit(file);
        }
    }
};

/// The files of every Claude Code session below the folder of its projects: "PROJECT/SESSION.jsonl"
/// and, where there is one, "PROJECT/SESSION/subagents/agent-….jsonl". By session id.
std::map<std::string, CostFiles> claudeCostFiles(const std::string& projectsDirectory,
                                                 SkipTally& skipped);

/// Codex's rollouts written since `since`, in the order of their paths.
std::vector<FoundFile> codexCostFiles(const std::string& codexDirectory, Date since,
                                      SkipTally& skipped);

}  // namespace fleetwise
