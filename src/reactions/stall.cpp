#include "reactions/stall.h"

#include "foundation/json.h"
#include "foundation/regular_file.h"

namespace fleetwise {

namespace {

constexpr std::size_t maximumFileBytes = 1 << 20;

std::optional<Stall> decodeStall(const Json& entry) {
    const auto at = member<Date>(entry, "at");
    const auto seconds = member<double>(entry, "seconds");
    if (!at || !seconds) return {};
    Stall stall{.at = *at, .seconds = Seconds(*seconds), .cpu = {}};
    stall.sessions = member<std::int64_t>(entry, "sessions").value_or(0);
    if (const auto cpu = member<double>(entry, "cpu")) stall.cpu = Seconds(*cpu);
    return stall;
}

}  // namespace

std::vector<Stall> loadStalls(const std::string& path) {
    std::vector<Stall> stalls;
    const auto contents = readRegularFile(path, maximumFileBytes);
    const auto document = contents ? parseJson(*contents) : std::nullopt;
    if (!document || !document->is_array()) return stalls;
    for (const Json& entry : *document) {
        if (const auto stall = decodeStall(entry)) stalls.push_back(*stall);
    }
    return stalls;
}

}  // namespace fleetwise
