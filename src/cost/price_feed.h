#pragma once

#include "cost/price_block.h"
#include "cost/price_settings.h"
#include "cost/update_feed.h"
#include "foundation/date.h"

#include <tl/expected.hpp>

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// Takes the prices out of the update feed. Any thread, but `adopt` on one at a time.
class PriceFeed {
public:
    using Failure = PriceFailure;

    static constexpr auto& parse = parsePriceBlock;

    /// `pricesFile` is the one that `settings` loads, which must outlive this.
    PriceFeed(std::string pricesFile, PriceSettings& settings);

    /// Takes over the newest block of prices of these bytes, which were downloaded as the feed: it
    /// is stored in the prices file and in use from now on, unless it is older than the prices
    /// that were last taken over. Whatever fails is noted in `lastFailure` and leaves the prices
    /// as they are; prices that cannot be stored are used all the same. A feed without a block
    /// changes nothing. Gives the feed as it was read, whatever came of its prices.
    tl::expected<UpdateFeed, UpdateFeedFault> adopt(std::string_view appcast, Date now);

    /// When prices were last taken over, since this program started.
    std::optional<Date> lastSeen() const;

    /// What hindered the last feed's prices.
    std::optional<PriceFailure> lastFailure() const;

    /// The last failure's German wording.
    std::optional<std::string> lastError() const;

private:
    void adoptBlock(const std::string& block, Date now);

    /// Nothing where it succeeded.
    std::optional<PriceFailure> store(const std::string& block) const;
    void note(std::optional<PriceFailure> failed);

    const std::string file;
    PriceSettings& settings;

    mutable std::mutex lock;
    std::optional<Date> seen;             ///< guarded by `lock`
    std::optional<PriceFailure> failure;  ///< guarded by `lock`
};

}  // namespace fleetwise
