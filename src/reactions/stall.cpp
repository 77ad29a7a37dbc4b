#include "reactions/stall.h"

#include "foundation/atomic_file.h"
#include "foundation/json.h"
#include "foundation/regular_file.h"

namespace fleetwise {

namespace {

constexpr std::size_t maximumFileBytes = 1 << 20;

/// Keeps the members in the order of the fields, for whoever opens the file.
using OrderedJson = nlohmann::ordered_json;

std::optional<Stall> decodeStall(const Json& entry) {
    const auto at = member<Date>(entry, "at");
    const auto seconds = member<double>(entry, "seconds");
    if (!at || !seconds) return {};
    Stall stall{.at = *at, .seconds = Seconds(*seconds), .cpu = {}};
    stall.sessions = member<std::int64_t>(entry, "sessions").value_or(0);
    if (const auto cpu = member<double>(entry, "cpu")) stall.cpu = Seconds(*cpu);
    return stall;
}

OrderedJson encodedStall(const Stall& stall) {
    OrderedJson entry = {{"at", internetDate(stall.at)},
                         {"seconds", stall.seconds.count()},
                         {"sessions", stall.sessions}};
    if (stall.cpu) entry["cpu"] = stall.cpu->count();
    return entry;
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

bool saveStalls(const std::string& path, const std::vector<Stall>& stalls) {
    OrderedJson document = OrderedJson::array();
    for (const Stall& stall : stalls)
        document.push_back(encodedStall(stall));
    return writeFileAtomically(path, document.dump()).has_value();
}

}  // namespace fleetwise
