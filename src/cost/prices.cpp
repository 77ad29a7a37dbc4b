#include "cost/prices.h"

#include "foundation/text.h"
#include "localisation/localisation.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace fleetwise {

namespace {

using Book = Prices::Book;
using TokenPrice = Prices::TokenPrice;
using Verdict = Prices::Verdict;

constexpr double tokensPerPrice = 1'000'000;

std::mutex bookLock;

/// Guarded by bookLock.
Book& bookInUse() {
    static Book book = Book::builtIn();
    return book;
}

double sumOf(std::int64_t tokens, double price) {
    return static_cast<double>(tokens) * price;
}

/// US dollars from the least to the most.
struct Range {
    double low = 0;
    double high = 0;
};

/// What the book gives for a report that says nothing about how long its cache writes were kept.
Range rangeOf(const Prices::BilledModel& model, const TokenPrice& price) {
    const double base = (sumOf(model.input, price.input) + sumOf(model.output, price.output) +
                         sumOf(model.cacheRead, price.cacheRead)) /
                        tokensPerPrice;
    // The user may have set either of the two prices to be the lower.
    const auto [cheap, dear] = std::minmax({price.cacheWrite5m, price.cacheWrite1h});
    return {.low = base + sumOf(model.cacheCreation, cheap) / tokensPerPrice,
            .high = base + sumOf(model.cacheCreation, dear) / tokensPerPrice};
}

Verdict verdictFor(double billed, Range book, double tolerance) {
    using enum Verdict::Kind;
    if (!(book.low > 0 && book.high > 0)) {
        if (!(billed > 0)) return {};
        return {.kind = notComparable, .text = std::string("keine Token"_text.german)};
    }
    if (!(billed > 0)) return {};
    if (billed < (1 - tolerance) * book.low) {
        return {.kind = outdated, .deviation = (billed - book.low) / book.low};
    }
    if (billed > (1 + tolerance) * book.high) {
        return {.kind = outdated, .deviation = (billed - book.high) / book.high};
    }
    return {};
}

}  // namespace

const Book& Book::builtIn() {
    static const Book book{.table = {{"opus",
                                      {.input = 5.0,
                                       .output = 25.0,
                                       .cacheRead = 0.5,
                                       .cacheWrite5m = 6.25,
                                       .cacheWrite1h = 10.0}},
                                     {"haiku",
                                      {.input = 1.0,
                                       .output = 5.0,
                                       .cacheRead = 0.1,
                                       .cacheWrite5m = 1.25,
                                       .cacheWrite1h = 2.0}}},
                           .asOf = "2026-08-27",
                           .origin = {.kind = Origin::Kind::builtIn}};
    return book;
}

std::optional<std::string_view> Prices::family(std::optional<std::string_view> model) {
    if (!model) return {};
    const std::string id = asciiLowercased(*model);
    for (const std::string_view name : knownFamilies) {
        if (id.find(name) != std::string::npos) return name;
    }
    return {};
}

std::optional<TokenPrice> Prices::price(std::optional<std::string_view> model, const Book& book) {
    const auto name = family(model);
    const auto row = name ? book.table.find(*name) : book.table.end();
    if (row == book.table.end()) return {};
    return row->second;
}

std::optional<double> Prices::apiCost(const TokenTally& tally,
                                      std::optional<std::string_view> model, const Book& book) {
    const auto prices = price(model, book);
    if (!prices || tally.cacheWriteUnknown != 0) return {};
    return (sumOf(tally.input, prices->input) + sumOf(tally.output, prices->output) +
            sumOf(tally.cacheRead, prices->cacheRead) +
            sumOf(tally.cacheWrite5m, prices->cacheWrite5m) +
            sumOf(tally.cacheWrite1h, prices->cacheWrite1h)) /
           tokensPerPrice;
}

std::optional<double> Prices::uncachedCost(const TokenTally& tally,
                                           std::optional<std::string_view> model,
                                           const Book& book) {
    const auto prices = price(model, book);
    if (!prices) return {};
    const std::int64_t read =
        saturatingSum(saturatingSum(tally.cacheWrites(), tally.input), tally.cacheRead);
    return (sumOf(tally.output, prices->output) + sumOf(read, prices->input)) / tokensPerPrice;
}

Book Prices::flatBook(double usdPerMillion) {
    Book book{.table = {},
              .asOf = {},
              .origin = {.kind = Origin::Kind::flat, .usdPerMillion = usdPerMillion}};
    for (const std::string_view name : knownFamilies) {
        book.table[std::string(name)] = {usdPerMillion, usdPerMillion, usdPerMillion, usdPerMillion,
                                         usdPerMillion};
    }
    return book;
}

Verdict Prices::verdict(const std::vector<BilledModel>& billed, double tolerance,
                        const Book& book) {
    Range total;
    double totalBilled = 0;
    for (const BilledModel& model : billed) {
        if (model.webSearchRequests != 0) {
            return {.kind = Verdict::Kind::notComparable, .text = "webSearchRequests"};
        }
        const auto prices = price(model.model, book);
        if (!prices) return {.kind = Verdict::Kind::unknownModel, .text = model.model};
        const Range range = rangeOf(model, *prices);
        total.low += range.low;
        total.high += range.high;
        totalBilled += model.costUSD;
    }
    return verdictFor(totalBilled, total, tolerance);
}

Book Prices::current() {
    const std::lock_guard guard(bookLock);
    return bookInUse();
}

void Prices::install(Book book) {
    const std::lock_guard guard(bookLock);
    std::swap(bookInUse(), book);
}

}  // namespace fleetwise
