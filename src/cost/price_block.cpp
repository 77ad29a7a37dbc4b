#include "cost/price_block.h"

#include "foundation/json.h"
#include "localisation/localisation.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <set>

namespace fleetwise {

namespace {

using Book = Prices::Book;
using TokenPrice = Prices::TokenPrice;
using enum PriceFailure::Kind;

constexpr std::size_t maximumBlockBytes = 16 << 10;

struct PriceMember {
    const char* name;
    double TokenPrice::*price;
};
constexpr PriceMember priceMembers[] = {
    {"eingabe", &TokenPrice::input},
    {"ausgabe", &TokenPrice::output},
    {"lesen", &TokenPrice::cacheRead},
    {"schreiben_5min", &TokenPrice::cacheWrite5m},
    {"schreiben_1h", &TokenPrice::cacheWrite1h},
};

Text textOf(PriceFailure::Kind kind) {
    switch (kind) {
        case older:
            return "ältere Fassung (Stand %@) — nicht übernommen"_text;
        case noKnownFamily:
            return "keine bekannte Modellfamilie enthalten"_text;
        case unreadableFeed:
            return "Update-Feed nicht lesbar"_text;
        case notStored:
            return "Preise nicht gespeichert: %@"_text;
        case malformed:
            break;
    }
    return "Datei unbrauchbar oder Datum ungültig"_text;
}

/// The number that all of `digits` form, which are the digits 0 to 9.
std::optional<int> numberOf(std::string_view digits) {
    if (digits.find_first_not_of("0123456789") != std::string_view::npos) return {};
    int number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

/// The document, or nothing where an object names a member twice: nobody can tell which one is
/// meant.
std::optional<Json> unambiguousJson(std::string_view text) {
    // The time that the parser takes with a callback grows with the square of a list's length.
    if (text.size() > maximumBlockBytes) return {};
    std::vector<std::set<std::string>> openObjects;
    bool isAmbiguous = false;
    const auto note = [&](int, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start) openObjects.emplace_back();
        if (event == Json::parse_event_t::object_end) openObjects.pop_back();
        if (event == Json::parse_event_t::key) {
            isAmbiguous |= !openObjects.back().insert(parsed.get<std::string>()).second;
        }
        return true;
    };
    Json document = Json::parse(text, note, /*allow_exceptions=*/false);
    if (document.is_discarded() || isAmbiguous) return {};
    return document;
}

std::optional<std::int64_t> revisionOf(const std::string& block) {
    const auto document = parseJson(block);
    const auto revision = document ? document->find("fassung") : Json::const_iterator();
    if (!document || revision == document->end() || !revision->is_number_integer()) return {};
    constexpr auto maximum = std::numeric_limits<std::int64_t>::max();
    if (revision->is_number_unsigned() && revision->get<std::uint64_t>() > maximum) return maximum;
    return revision->get<std::int64_t>();
}

/// Nothing where one of the prices is missing or not possible.
std::optional<TokenPrice> priceOf(const Json& row) {
    TokenPrice prices;
    for (const auto& [name, price] : priceMembers) {
        const auto number = member<double>(row, name);
        if (!number || !isPossiblePrice(*number)) return {};
        prices.*price = *number;
    }
    return prices;
}

tl::unexpected<PriceFailure> failed(PriceFailure::Kind kind) {
    return tl::unexpected(PriceFailure{.kind = kind, .detail = {}});
}

}  // namespace

std::string germanWording(const PriceFailure& failure) {
    std::string wording(textOf(failure.kind).german);
    const auto place = wording.find("%@");
    if (place != std::string::npos) wording.replace(place, 2, failure.detail);
    return wording;
}

std::string localised(const PriceFailure& failure) {
    return localisedFormat(textOf(failure.kind), failure.detail);
}

bool isPossiblePrice(double usdPerMillion) {
    return std::isfinite(usdPerMillion) && usdPerMillion >= 0 &&
           usdPerMillion <= maximumUsdPerMillion;
}

bool isValidDate(std::string_view day) {
    if (day.size() != 10 || day[4] != '-' || day[7] != '-') return false;
    const auto year = numberOf(day.substr(0, 4));
    const auto month = numberOf(day.substr(5, 2));
    const auto dayOfMonth = numberOf(day.substr(8, 2));
    if (!year || !month || !dayOfMonth) return false;
    return ::date::year_month_day(::date::year(*year), ::date::month(static_cast<unsigned>(*month)),
                                  ::date::day(static_cast<unsigned>(*dayOfMonth)))
        .ok();
}

tl::expected<Book, PriceFailure> parsePriceBlock(std::string_view text) {
    const auto document = unambiguousJson(text);
    if (!document) return failed(malformed);
    const auto day = member<std::string>(*document, "stand");
    if (!day || !isValidDate(*day)) return failed(malformed);
    const auto rows = document->find("modelle");
    if (rows == document->end() || !rows->is_object()) return failed(malformed);
    Book book{.table = {}, .asOf = *day, .origin = {.kind = Prices::Origin::Kind::fetched}};
    for (const std::string_view family : Prices::knownFamilies) {
        const auto row = rows->find(family);
        if (row == rows->end()) continue;
        const auto prices = priceOf(*row);
        if (!prices) return failed(malformed);
        book.table.emplace(family, *prices);
    }
    if (book.table.empty()) return failed(noKnownFamily);
    return book;
}

const std::string* newestPriceBlock(const std::vector<std::string>& blocks) {
    const std::string* newest = nullptr;
    std::optional<std::int64_t> highest;
    for (const std::string& block : blocks) {
        const auto revision = revisionOf(block);
        if (newest != nullptr && !(revision > highest)) continue;
        newest = &block;
        highest = revision;
    }
    return newest;
}

}  // namespace fleetwise
