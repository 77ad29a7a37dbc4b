#pragma once

#include "foundation/skip_tally.h"
#include "sources/desktop_metadata.h"
#include "sources/file_cache.h"

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// The metadata that the Claude desktop app keeps of its Claude Code sessions: one JSON object a
/// session, in files "local_….json" in folders of its accounts and organisations. Any thread.
class DesktopMetadataStore {
public:
    using Meta = DesktopMetadata;

    /// The store of this process.
    static DesktopMetadataStore& shared();

    /// The metadata in the files of `root` and of all folders below it, by Claude Code's session
    /// id; of several files for one session the one with the later activity. A file is read once
    /// per change, also one that turns out to hold no metadata. What was passed over is counted
    /// in `skipped`.
    DesktopSessions load(const std::string& root, SkipTally& skipped);

    /// The metadata in the text of a file, which jsonPadding readable bytes must follow. Nothing
    /// where the text is no JSON object or a known key has a wrong type; null and blank texts
    /// count as absent, and unknown keys are ignored.
    static std::optional<Meta> decode(std::string_view padded);

private:
    /// Of a file that holds no metadata: nothing.
    FileCache<std::optional<Meta>> cache;
};

}  // namespace fleetwise
