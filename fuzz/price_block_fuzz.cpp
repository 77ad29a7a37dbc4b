// Any bytes as an update feed: read or refused, and what becomes a book holds only prices that can
// be.

#include "cost/price_block.h"
#include "cost/update_feed.h"

namespace {

using namespace fleetwise;

void check(const Prices::TokenPrice& price) {
    for (const double usd :
         {price.input, price.output, price.cacheRead, price.cacheWrite5m, price.cacheWrite1h}) {
        if (!(usd >= 0 && usd <= 10'000)) __builtin_trap();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto feed = readUpdateFeed(std::string(data, data + size));
    if (!feed) return 0;
    for (const std::string& block : feed->priceBlocks) {
        const auto book = parsePriceBlock(block);
        if (!book) continue;
        if (book->table.empty() || !isValidDate(book->asOf)) __builtin_trap();
        for (const auto& [family, price] : book->table)
            check(price);
    }
    if ((newestPriceBlock(feed->priceBlocks) == nullptr) != feed->priceBlocks.empty()) {
        __builtin_trap();
    }
    return 0;
}
