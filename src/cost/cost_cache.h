#pragma once

#include "cost/session_cost.h"
#include "foundation/file_stamp.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace fleetwise {

/// A file as it was when it was read.
struct FileState {
    std::uint64_t size = 0;  ///< in bytes
    double modified = 0;     ///< seconds since 2001-01-01 UTC
    std::string sessionId;   ///< whose usage stands in it

    bool operator==(const FileState&) const = default;
};

FileState fileState(const FileStamp& stamp, std::string sessionId);

/// What a scan of all costs knows, and what the next one starts from.
struct CostCache {
    std::unordered_map<std::string, FileState> files;  ///< by absolute path
    SessionCosts sessions;
};

/// The text of the cache file: one JSON object with
///   "version"   1
///   "zone"      the time zone whose days the usage is told by
///   "files"     path → {"size", "modified", "sessionId"}
///   "sessions"  id → {"agent", "byModel", "billedUSD", "billedModels", "lastModel", "lastEffort",
///               "startedBy", "days", "family", "trail", "beginnings"}
/// with the members of the structures above under their own names, and none for what is absent.
std::string encodeCostCache(const CostCache& cache, std::string_view zone);

/// What such a text holds; nothing where it is damaged, or of another version. Where that zone is
/// another, or none is told, the sessions are kept and their files are to be read again.
std::optional<CostCache> decodeCostCache(std::string_view text, std::string_view zone);

}  // namespace fleetwise
