#pragma once

#include "foundation/skip_tally.h"
#include "sources/codex_rollout.h"
#include "sources/codex_store.h"
#include "sources/file_cache.h"
#include "sources/rollout_head.h"
#include "sources/rollout_tail.h"

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace fleetwise {

/// Codex's rollouts, each read again only where it has changed, and then only what was appended.
/// Any thread.
class CodexRollouts {
public:
    /// Says of a rollout's file, before it is opened, whether it is to be read.
    using Wish = std::function<bool(const FoundFile&)>;

    struct Listing {
        std::vector<CodexRollout> rollouts;  ///< latest event first; of one session only the first
        /// The ids of the rest: of files not read, and of forks and subagents.
        std::unordered_set<std::string> otherIds;
        std::size_t compressed = 0;  ///< files that Codex has packed away
    };

    /// The rollouts below `codexDirectory` that are wished for, and those that they come from. A
    /// file without a meta line gives none; what was passed over is counted in `skipped`.
    Listing load(const std::string& codexDirectory, const Wish& isWished, SkipTally& skipped);

private:
    /// What one file tells, as far as it was written when it was read.
    struct Reading {
        FileIdentity identity;
        RolloutHead::Reading start;
        RolloutTail::Reading end;
        /// What stands before the end's next line. A file that does not have it there any more was
        /// written anew, though it may have kept its identity.
        std::string lastRead;
    };

    using FilesById = std::unordered_multimap<std::string, FoundFile>;

    FileCache<Reading>::Values readWithParents(std::vector<FoundFile>& files, FilesById& others,
                                               SkipTally& skipped);
    static bool goesOn(const RegularFile& file, const Reading& known);
    static std::shared_ptr<const Reading> read(const FoundFile& file,
                                               const std::shared_ptr<const Reading>& known,
                                               SkipTally& skipped);
    static void list(const std::vector<FoundFile>& files, const FileCache<Reading>::Values& values,
                     const CodexStore::ThreadNames& names, Listing& listing, SkipTally& skipped);
    static Date lastEventAt(const FoundFile& file, const Reading& reading);
    static std::vector<std::size_t> latestFirst(const std::vector<FoundFile>& files,
                                                const FileCache<Reading>::Values& values);
    static CodexRollout rolloutOf(const FoundFile& file, const Reading& reading,
                                  const CodexStore::ThreadNames& names);

    FileCache<Reading> readings;
    FileCache<CodexStore::ThreadNames> index;
};

}  // namespace fleetwise
