#pragma once

#include "foundation/skip_tally.h"
#include "sources/codex_store.h"
#include "sources/file_cache.h"

#include <memory>
#include <string>

namespace fleetwise {

/// The names in the session index of Codex's folder, read again only where that has changed; empty
/// where there is no index, never null.
std::shared_ptr<const CodexStore::ThreadNames> threadNamesOf(
    const std::string& codexDirectory, FileCache<CodexStore::ThreadNames>& cache,
    SkipTally& skipped);

}  // namespace fleetwise
