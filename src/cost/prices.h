#pragma once

#include "cost/token_tally.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// What tokens cost: the book of prices in use, and the arithmetic with it. Money is in US dollars.
class Prices {
public:
    /// US dollars per million tokens.
    struct TokenPrice {
        double input = 0;
        double output = 0;
        double cacheRead = 0;
        double cacheWrite5m = 0;
        double cacheWrite1h = 0;

        bool operator==(const TokenPrice&) const = default;
    };

    /// Where a book comes from.
    struct Origin {
        enum class Kind {
            flat,     ///< one rate of the user's for everything
            builtIn,  ///< this program
            fetched,  ///< the update feed
            custom,   ///< changed by the user
        };
        Kind kind = Kind::builtIn;
        double usdPerMillion = 0;  ///< of a flat book

        bool operator==(const Origin&) const = default;
    };

    struct Book {
        std::map<std::string, TokenPrice, std::less<>> table;  ///< by model family
        std::string asOf;  ///< day of the prices, "2026-08-27"; empty for a flat book
        Origin origin;

        bool operator==(const Book&) const = default;

        /// The prices that this program knows by itself.
        static const Book& builtIn();
    };

    /// What an agent says it billed for one model.
    struct BilledModel {
        std::string model;
        std::int64_t input = 0;
        std::int64_t output = 0;
        std::int64_t cacheRead = 0;
        std::int64_t cacheCreation = 0;
        std::int64_t webSearchRequests = 0;
        double costUSD = 0;

        bool operator==(const BilledModel&) const = default;
    };

    /// How what was billed compares with a book.
    struct Verdict {
        enum class Kind {
            unknownModel,   ///< `text` is the model that has no price
            notComparable,  ///< `text` is the reason
            outdated,       ///< billed is off by `deviation`
            consistent,
        };
        Kind kind = Kind::consistent;
        std::string text;
        double deviation = 0;  ///< as a fraction: 0.1 is 10 % more than the book says

        bool operator==(const Verdict&) const = default;
    };

    /// The families of models, in the order in which ids are matched.
    static constexpr std::array<std::string_view, 5> knownFamilies{"opus", "haiku", "fable",
                                                                   "sonnet", "gpt"};

    static constexpr double usualTolerance = 0.02;

    /// The first family whose name occurs in the id, in whatever case.
    static std::optional<std::string_view> family(std::optional<std::string_view> model);

    /// The price of the model's family; nothing where the book has none.
    static std::optional<TokenPrice> price(std::optional<std::string_view> model,
                                           const Book& book = current());

    /// What the tokens cost at the agent's maker. Nothing without a price, and nothing where the
    /// lifetime of a cache write is not known, since its price depends on it.
    static std::optional<double> apiCost(const TokenTally& tally,
                                         std::optional<std::string_view> model,
                                         const Book& book = current());

    /// What the same work would have cost without a prompt cache. Nothing without a price.
    static std::optional<double> uncachedCost(const TokenTally& tally,
                                              std::optional<std::string_view> model,
                                              const Book& book = current());

    /// A book in which everything costs the same, in US dollars per million tokens.
    static Book flatBook(double usdPerMillion);

    /// Whether what was billed lies within what the book gives, give or take the fraction
    /// `tolerance`. A report does not say how long its cache writes were kept, so the book gives a
    /// range.
    static Verdict verdict(const std::vector<BilledModel>& billed, double tolerance,
                           const Book& book = current());

    /// The book in use, as a copy. Any thread.
    static Book current();

    /// For PriceSettings, which decides about the book. Any thread.
    static void install(Book book);
};

}  // namespace fleetwise
