#include "cost/price_feed.h"

#include "foundation/atomic_file.h"
#include "foundation/regular_file.h"

#include <utility>

namespace fleetwise {

using enum PriceFailure::Kind;

PriceFeed::PriceFeed(std::string pricesFile, PriceSettings& givenSettings)
    : file(std::move(pricesFile)), settings(givenSettings) {}

tl::expected<UpdateFeed, UpdateFeedFault> PriceFeed::adopt(std::string_view appcast, Date now) {
    auto feed = readUpdateFeed(appcast);
    if (!feed) {
        note(PriceFailure{.kind = unreadableFeed, .detail = {}});
    } else if (const std::string* block = newestPriceBlock(feed->priceBlocks)) {
        adoptBlock(*block, now);
    }
    return feed;
}

void PriceFeed::adoptBlock(const std::string& block, Date now) {
    auto book = parsePriceBlock(block);
    if (!book) return note(book.error());
    const auto inUse = settings.fetched();
    if (inUse && inUse->asOf > book->asOf) {
        return note(PriceFailure{.kind = older, .detail = book->asOf});
    }
    auto failed = store(block);
    settings.reapply(*std::move(book));
    const std::lock_guard guard(lock);
    seen = now;
    failure = std::move(failed);
}

std::optional<PriceFailure> PriceFeed::store(const std::string& block) const {
    if (readRegularFile(file, block.size()) == block) return {};
    const auto written = writeFileAtomically(file, block);
    if (written) return {};
    return PriceFailure{.kind = notStored, .detail = written.error().message()};
}

void PriceFeed::note(std::optional<PriceFailure> failed) {
    const std::lock_guard guard(lock);
    failure = std::move(failed);
}

std::optional<Date> PriceFeed::lastSeen() const {
    const std::lock_guard guard(lock);
    return seen;
}

std::optional<PriceFailure> PriceFeed::lastFailure() const {
    const std::lock_guard guard(lock);
    return failure;
}

std::optional<std::string> PriceFeed::lastError() const {
    const auto failed = lastFailure();
    if (!failed) return {};
    return germanWording(*failed);
}

}  // namespace fleetwise
