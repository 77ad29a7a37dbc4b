#include "cost/prices.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

using Kind = Prices::Verdict::Kind;

const Prices::Book& builtIn() {
    return Prices::Book::builtIn();
}

TEST(Prices, findTheFamilyInAnId) {
    const struct {
        const char* name;
        std::optional<std::string_view> model;
        std::optional<std::string_view> family;
    } rows[] = {
        {"none", {}, {}},
        {"empty", "", {}},
        {"in the middle, in capitals", "Claude-OPUS-4-6", "opus"},
        {"the list's order decides, not the id's", "haiku-or-opus", "opus"},
        {"known without a price", "gpt-5.2-codex", "gpt"},
        {"unknown", "claude-next", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Prices::family(row.model), row.family) << row.name;
}

TEST(Prices, costWhatTheBookSays) {
    const TokenTally million{.input = 1'000'000};
    const TokenTally each{.input = 1'000'000,
                          .output = 1'000'000,
                          .thinking = 1'000'000,
                          .cacheRead = 1'000'000,
                          .cacheWrite5m = 1'000'000,
                          .cacheWrite1h = 1'000'000};
    TokenTally undated = each;
    undated.cacheWriteUnknown = 1;
    const struct {
        const char* name;
        TokenTally tally;
        const char* model;
        std::optional<double> api;
        std::optional<double> uncached;
    } rows[] = {
        {"exactly the price", million, "claude-haiku-4-5", 1.0, 1.0},
        {"nothing used", {}, "opus", 0.0, 0.0},
        {"all kinds", each, "opus", 46.75, 45.0},
        {"a cache write of unknown lifetime", undated, "opus", {}, 45.000005},
        {"no price", million, "sonnet", {}, {}},
        {"no family", million, "other", {}, {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Prices::apiCost(row.tally, row.model, builtIn()), row.api) << row.name;
        EXPECT_EQ(Prices::uncachedCost(row.tally, row.model, builtIn()), row.uncached) << row.name;
    }
}

TEST(Prices, compareWithWhatWasBilled) {
    // Between 0.0625 and 0.1, as long as the cache write is 10,000 tokens.
    const auto billed = [](double usd) {
        return Prices::BilledModel{.model = "opus", .cacheCreation = 10'000, .costUSD = usd};
    };
    const Prices::BilledModel search{.model = "opus", .webSearchRequests = 1};
    const Prices::BilledModel unknown{.model = "next"};
    const Prices::BilledModel unused{.model = "haiku"};
    Prices::BilledModel unusedButBilled = unused;
    unusedButBilled.costUSD = 1;
    const struct {
        const char* name;
        std::vector<Prices::BilledModel> models;
        Kind kind;
        const char* text = "";
        double deviation = 0;
    } rows[] = {
        {"no report", {}, Kind::consistent},
        {"at the lower end", {billed(0.0625 * 0.981)}, Kind::consistent},
        {"at the upper end", {billed(0.1 * 1.019)}, Kind::consistent},
        {"below", {billed(0.0625 / 2)}, Kind::outdated, "", -0.5},
        {"above", {billed(0.15)}, Kind::outdated, "", 0.5},
        {"together within", {billed(0.02), billed(0.14)}, Kind::consistent},
        {"not billed", {billed(0)}, Kind::consistent},
        {"billed without tokens", {unusedButBilled}, Kind::notComparable, "keine Token"},
        {"neither", {unused}, Kind::consistent},
        {"the first decides", {search, unknown}, Kind::notComparable, "webSearchRequests"},
        {"whichever it is", {unused, unknown, search}, Kind::unknownModel, "next"},
        {"a family without a price", {{.model = "gpt-5"}}, Kind::unknownModel, "gpt-5"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto verdict = Prices::verdict(row.models, Prices::usualTolerance, builtIn());
        EXPECT_EQ(verdict.kind, row.kind);
        EXPECT_EQ(verdict.text, row.text);
        EXPECT_NEAR(verdict.deviation, row.deviation, 1e-12);
    }
    Prices::Book swapped = builtIn();
    std::swap(swapped.table["opus"].cacheWrite5m, swapped.table["opus"].cacheWrite1h);
    EXPECT_EQ(Prices::verdict({billed(0.08)}, 0, swapped).kind, Kind::consistent)
        << "the user may have set either price to be the lower";
}

}  // namespace
}  // namespace fleetwise::testing
