#include "usage/window_shares.h"

#include "cost/cost_files.h"
#include "cost/line_search.h"
#include "cost/usage_line.h"
#include "foundation/regular_file.h"
#include "foundation/saturating.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

namespace fleetwise {

namespace {

/// What requests weigh. Those without a price weigh as many tokens of the others do on average.
struct Weight {
    double usd = 0;
    std::int64_t pricedTokens = 0;
    std::int64_t otherTokens = 0;

    void add(const UsageLine::Reply& reply, const Prices::Book& book) {
        const std::int64_t tokens = reply.tally.all();
        if (const auto cost = Prices::apiCost(reply.tally, reply.model, book)) {
            usd += *cost;
            pricedTokens = saturatingSum(pricedTokens, tokens);
        } else {
            otherTokens = saturatingSum(otherTokens, tokens);
        }
    }

    double usdPerToken() const {
        const bool isKnown = pricedTokens > 0 && usd > 0;
        return isKnown ? usd / static_cast<double>(pricedTokens) : 1;
    }

    double total(double usdPerToken) const {
        return usd + static_cast<double>(otherTokens) * usdPerToken;
    }
};

/// Gathers the requests since a moment. A fork holds copies of requests of another session: they
/// weigh for both, but only once in the sum.
class ShareReader {
public:
    ShareReader(Date givenStart, const Prices::Book& givenBook)
        : windowStart(givenStart), book(givenBook) {}

    Weight read(const CostFiles& files) {
        Weight weight;
        std::unordered_set<std::size_t> keys;
        files.forEach([&](const FoundFile& file) {
            if (modificationDate(file.stamp) < windowStart) return;
            const auto opened = RegularFile::open(file.path);
            if (!opened) return;
            const auto visit = [&](std::string_view line) {
                add(UsageLine::parse(json, line), keys, weight);
                return LineSearch::Going::on;
            };
            // What could be read of a file counts.
            static_cast<void>(lines.forEachMarkedLine(
                *opened, static_cast<std::uint64_t>(opened->stamp().sizeBytes), UsageLine::marks,
                visit, [](std::size_t) { return LineSearch::Going::on; }));
        });
        return weight;
    }

    const Weight& sum() const { return all; }

private:
    void add(const UsageLine& line, std::unordered_set<std::size_t>& keys, Weight& weight) {
        if (!line.reply) return;
        const UsageLine::Reply& reply = *line.reply;
        const auto at = reply.timestamp ? parseInternetDate(*reply.timestamp) : std::nullopt;
        const std::size_t key = std::hash<std::string_view>()(reply.key.value_or(""));
        // A request counts by its first record.
        if (reply.key && !keys.insert(key).second) return;
        if (!at || *at < windowStart) return;
        weight.add(reply, book);
        if (!reply.key || allKeys.insert(key).second) all.add(reply, book);
    }

    const Date windowStart;
    const Prices::Book& book;
    LineSearch lines;
    JsonReader json;
    std::unordered_set<std::size_t> allKeys;
    Weight all;
};

}  // namespace

WindowShares windowShares(const std::string& projectsDirectory, Date windowStart, int usedPercent,
                          const Prices::Book& book) {
    ShareReader reader(windowStart, book);
    SkipTally skipped;
    std::map<std::string, Weight> weights;
    for (const auto& [session, files] : claudeCostFiles(projectsDirectory, skipped))
        weights.emplace(session, reader.read(files));
    const double usdPerToken = reader.sum().usdPerToken();
    const double sum = reader.sum().total(usdPerToken);
    WindowShares shares;
    for (const auto& [session, weight] : weights) {
        const double part = weight.total(usdPerToken);
        if (part > 0) shares.emplace(session, std::max(usedPercent, 0) * part / sum);
    }
    return shares;
}

}  // namespace fleetwise
