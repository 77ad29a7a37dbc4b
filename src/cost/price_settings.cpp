#include "cost/price_settings.h"

#include "cost/price_block.h"
#include "cost/update_feed.h"
#include "foundation/regular_file.h"

#include <utility>

namespace fleetwise {

namespace {

using Book = Prices::Book;
using Overrides = PriceSettings::Overrides;
using TokenPrice = Prices::TokenPrice;

bool isKey(std::string_view key) {
    for (const std::string_view family : Prices::knownFamilies) {
        for (const auto& member : PriceSettings::members) {
            if (key == PriceSettings::keyOf(family, member)) return true;
        }
    }
    return false;
}

std::optional<double> priceFrom(const Json& value) {
    if (!value.is_number() || !isPossiblePrice(value.get<double>())) return {};
    return value.get<double>();
}

Overrides storedOverrides(const UserDefaults& defaults) {
    Overrides overrides;
    const Json stored = defaults.dictionary(PriceSettings::overridesKey);
    for (const auto& [key, value] : stored.items()) {
        const auto price = priceFrom(value);
        if (price && isKey(key)) overrides.emplace(key, *price);
    }
    return overrides;
}

std::optional<double> storedFlatRate(const UserDefaults& defaults) {
    const Json value = defaults.value(PriceSettings::flatRateKey);
    // A store that keeps text only hands back text.
    const auto parsed = value.is_string() ? parseJson(value.get<std::string>()) : value;
    return parsed ? priceFrom(*parsed) : std::nullopt;
}

std::optional<Book> storedBook(const std::string& file) {
    const auto text = readRegularFile(file, maximumUpdateFeedBytes);
    auto book = text ? parsePriceBlock(*text) : tl::unexpected(PriceFailure());
    if (!book) return {};
    return *std::move(book);
}

/// Puts the user's prices of the family into the book; whether there were any that count.
bool applyOverrides(const Overrides& overrides, std::string_view family, Book& book) {
    const auto known = book.table.find(family);
    TokenPrice row = known == book.table.end() ? TokenPrice() : known->second;
    std::size_t applied = 0;
    for (const auto& member : PriceSettings::members) {
        const auto found = overrides.find(PriceSettings::keyOf(family, member));
        if (found == overrides.end()) continue;
        row.*member.price = found->second;
        ++applied;
    }
    const bool isWhole = known != book.table.end() || applied == PriceSettings::members.size();
    if (applied == 0 || !isWhole) return false;
    book.table.insert_or_assign(std::string(family), row);
    return true;
}

}  // namespace

PriceSettings::PriceSettings(UserDefaults& givenDefaults, std::string pricesFile,
                             Published published)
    : defaults(givenDefaults), file(std::move(pricesFile)), publish(std::move(published)) {}

std::string PriceSettings::keyOf(std::string_view family, const Member& member) {
    return std::string(family) + "." + std::string(member.name);
}

Book PriceSettings::load() {
    auto storedPrices = storedBook(file);
    auto ownPrices = storedOverrides(defaults);
    const auto ownRate = storedFlatRate(defaults);
    {
        const std::lock_guard guard(lock);
        fetchedBook = std::move(storedPrices);
        overrides = std::move(ownPrices);
        flatRate = ownRate;
    }
    return resolve();
}

Book PriceSettings::reapply(Book fetched) {
    {
        const std::lock_guard guard(lock);
        fetchedBook = std::move(fetched);
    }
    return resolve();
}

Book PriceSettings::setOverride(std::optional<double> usdPerMillion, const std::string& key) {
    if (!isKey(key) || (usdPerMillion && !isPossiblePrice(*usdPerMillion))) return resolve();
    Overrides changed = custom();
    if (usdPerMillion) {
        changed.insert_or_assign(key, *usdPerMillion);
    } else {
        changed.erase(key);
    }
    saveOverrides(changed);
    return resolve();
}

Book PriceSettings::setFlatRate(std::optional<double> usdPerMillion) {
    if (usdPerMillion && !isPossiblePrice(*usdPerMillion)) return resolve();
    if (usdPerMillion) {
        defaults.set(flatRateKey, *usdPerMillion);
    } else {
        defaults.remove(flatRateKey);
    }
    {
        const std::lock_guard guard(lock);
        flatRate = usdPerMillion;
    }
    return resolve();
}

Book PriceSettings::reset() {
    saveOverrides({});
    return setFlatRate({});
}

void PriceSettings::saveOverrides(const Overrides& changed) {
    if (changed.empty()) {
        defaults.remove(overridesKey);
    } else {
        defaults.set(overridesKey, Json(changed));
    }
    const std::lock_guard guard(lock);
    overrides = changed;
}

Book PriceSettings::bookLocked() const {
    if (flatRate) return Prices::flatBook(*flatRate);
    Book book = fetchedBook ? *fetchedBook : Book::builtIn();
    for (const std::string_view family : Prices::knownFamilies) {
        if (applyOverrides(overrides, family, book)) {
            book.origin = {.kind = Prices::Origin::Kind::custom};
        }
    }
    return book;
}

Book PriceSettings::resolve() {
    Book book;
    {
        const std::lock_guard guard(lock);
        book = bookLocked();
        Prices::install(book);
    }
    if (publish) publish(book);
    return book;
}

Overrides PriceSettings::custom() const {
    const std::lock_guard guard(lock);
    return overrides;
}

std::optional<double> PriceSettings::flat() const {
    const std::lock_guard guard(lock);
    return flatRate;
}

std::optional<Book> PriceSettings::fetched() const {
    const std::lock_guard guard(lock);
    return fetchedBook;
}

}  // namespace fleetwise
