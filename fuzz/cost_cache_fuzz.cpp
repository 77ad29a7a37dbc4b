// The text of a cache file: it is either refused or read, and then written and read again as the
// same.

#include "cost/cost_cache.h"
#include "cost/cost_sum.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

bool areEqual(const fleetwise::SessionCosts& left, const fleetwise::SessionCosts& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const auto& one, const auto& other) {
                          return one.first == other.first && *one.second == *other.second;
                      });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    constexpr std::string_view zone = "Etc/UTC";
    const std::string text(data, data + size);
    const auto cache = decodeCostCache(text, zone);
    if (!cache) return 0;
    const auto again = decodeCostCache(encodeCostCache(*cache, zone), zone);
    if (!again || again->files != cache->files) std::abort();
    if (!areEqual(again->sessions, cache->sessions)) std::abort();
    std::vector<std::string> ids;
    for (const auto& [id, session] : cache->sessions)
        ids.push_back(id);
    const CostSum sum(std::make_shared<SessionCosts>(cache->sessions));
    (void)sum.of(ids, Prices::flatBook(1));
    (void)sum.ofDay("2026-11-21", Prices::flatBook(1));
    return 0;
}
