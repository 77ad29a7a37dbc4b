#pragma once

#include "cost/prices.h"

#include <tl/expected.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Why prices of the update feed are not taken over.
struct PriceFailure {
    enum class Kind {
        malformed,       ///< a price, the date or the whole block is none
        noKnownFamily,   ///< no family of models that this program knows
        older,           ///< `detail` is the day of the prices, before that of those in use
        unreadableFeed,  ///< the feed around them
        notStored,       ///< taken over, but `detail` says why the next start will not know it
    };
    Kind kind = Kind::malformed;
    std::string detail;

    bool operator==(const PriceFailure&) const = default;
};

/// The failure in German, as it is noted.
std::string germanWording(const PriceFailure& failure);

/// The failure in the interface language, to be shown.
std::string localised(const PriceFailure& failure);

inline constexpr double maximumUsdPerMillion = 10'000;

/// Whether this can be the price of a million tokens in US dollars: from 0 to the maximum.
bool isPossiblePrice(double usdPerMillion);

/// Whether it is a day of the calendar in the form "2026-08-27".
bool isValidDate(std::string_view day);

/// Reads a block of prices, any bytes, as a book of the origin `fetched`:
///
/// {"stand": "2026-09-01", "fassung": 2, "modelle": {"opus": {"eingabe": 5, "ausgabe": 25,
///  "lesen": 0.5, "schreiben_5min": 6.25, "schreiben_1h": 10}}}
///
/// Of the known families (Prices::knownFamilies) every price must be there and possible, or
/// nothing is read; others are ignored. Text that names a member twice or is longer than 16 KiB is
/// malformed.
tl::expected<Prices::Book, PriceFailure> parsePriceBlock(std::string_view text);

/// The block with the highest whole number "fassung"; one without it, or that cannot be read,
/// comes last, and of equals the first counts. Null where there are no blocks.
const std::string* newestPriceBlock(const std::vector<std::string>& blocks);

}  // namespace fleetwise
