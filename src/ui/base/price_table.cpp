#include "ui/base/price_table.h"

#include "cost/price_settings.h"
#include "fleet/cost_texts.h"
#include "localisation/localisation.h"
#include "localisation/number_format.h"

#include <fmt/format.h>

#include <cmath>

namespace fleetwise {

namespace {

constexpr int mostPriceDecimals = 4;
constexpr int fewestPriceDecimals = 2;
constexpr double unitsPerDollar = 10'000;
constexpr std::int64_t decimalBase = 10;

FigureTable::Row priceRow(std::string_view family, const Prices::TokenPrice& prices) {
    FigureTable::Row row{{.text = familyName(family)}};
    for (const auto& member : PriceSettings::members) {
        const double price = prices.*member.price;
        row.push_back({.text = priceText(price), .number = price});
    }
    return row;
}

}  // namespace

std::vector<std::string> priceHeadings() {
    return {localised("Modell"_text),      localised("Eingabe"_text),
            localised("Ausgabe"_text),     localised("Cache lesen"_text),
            localised("Cache 5 min"_text), localised("Cache 1 h"_text)};
}

std::string priceTitle() {
    return localised("US-Dollar je Million Tokens"_text);
}

std::string familyName(std::string_view family) {
    if (family == "gpt") return "GPT";
    std::string name(family);
    if (!name.empty() && name.front() >= 'a' && name.front() <= 'z')
        name.front() = static_cast<char>(name.front() - 'a' + 'A');
    return name;
}

std::string priceText(double usdPerMillion) {
    std::int64_t units = std::llround(usdPerMillion * unitsPerDollar);
    int decimals = mostPriceDecimals;
    while (decimals > fewestPriceDecimals && units % decimalBase == 0) {
        units /= decimalBase;
        --decimals;
    }
    return fixedNumber(units, decimals);
}

FigureTable priceTable(const Prices::Book& book) {
    FigureTable table{.title = priceTitle(), .headings = priceHeadings()};
    for (const std::string_view family : Prices::knownFamilies) {
        const auto prices = book.table.find(family);
        if (prices != book.table.end()) table.rows.push_back(priceRow(family, prices->second));
    }
    return table;
}

std::string withoutPriceText(const Prices::Book& book) {
    std::vector<std::string> names;
    for (const std::string_view family : Prices::knownFamilies) {
        if (!book.table.contains(family)) names.push_back(familyName(family));
    }
    if (names.empty()) return {};
    return localisedFormat("Ohne Preis: %@"_text, fmt::format("{}", fmt::join(names, ", ")));
}

std::string comparisonText(const std::optional<Prices::Verdict>& verdict,
                           const Prices::Book& book) {
    if (book.origin.kind == Prices::Origin::Kind::flat) return {};
    if (!verdict)
        return localised(
            "Noch liegt keine Abrechnung vor, an der sich die Liste prüfen ließe."_text);
    const std::string doubt = verdictText(*verdict, book);
    return doubt.empty() ? localised("Was die Agenten abrechnen, passt zu dieser Liste."_text)
                         : doubt;
}

}  // namespace fleetwise
