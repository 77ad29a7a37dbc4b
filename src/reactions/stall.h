#pragma once

#include "foundation/date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// A time in which the main thread did not answer.
struct Stall {
    Date at;                     ///< when it began
    Seconds seconds{0};          ///< how long it lasted
    std::int64_t sessions = 0;   ///< sessions watched at that time
    std::optional<Seconds> cpu;  ///< processor time the program used meanwhile

    bool operator==(const Stall&) const = default;
};

/// The stalls recorded in the file at `path`, oldest first: a JSON array of objects with "at"
/// (ISO 8601), "seconds", "sessions" and, where known, "cpu". A missing or damaged file has none;
/// a damaged entry is left out.
std::vector<Stall> loadStalls(const std::string& path);

/// Replaces the file by these stalls, in the form that loadStalls reads. Whether it was written.
bool saveStalls(const std::string& path, const std::vector<Stall>& stalls);

}  // namespace fleetwise
