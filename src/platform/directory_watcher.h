#pragma once

#include "foundation/main_loop.h"

#include <memory>
#include <optional>
#include <string>

namespace fleetwise {

/// Runs `changed` on the main thread after entries of the folder were added, removed, replaced or
/// written to (when the writer closes the file), and when the folder itself came or went. It runs
/// 30 ms after the first of several changes, once for all of them; a steady stream runs it every
/// 30 ms.
///
/// `directory` is an absolute path. While it is missing its nearest ancestor is watched instead;
/// the folder, or any on the way to it, may go and come again. Where the system refuses (its limits
/// are reached, or the folder may not be read) nothing is told, and it is tried again each minute.
///
/// The loop outlives what is returned. `changed` may destroy it.
std::unique_ptr<MainLoop::Subscription> startDirectoryWatcher(MainLoop& loop,
                                                              const std::string& directory,
                                                              MainLoop::Action changed);

enum class WatchProblem {
    limitReached,  ///< the system has no watches left for this user or program
    other,
};

/// What keeps the folder, or its nearest ancestor while it is missing, from being watched now.
std::optional<WatchProblem> watchProblem(const std::string& directory);

}  // namespace fleetwise
