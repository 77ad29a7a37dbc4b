#pragma once

#include "cost/prices.h"
#include "fleet/figure_table.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

// How prices are laid out wherever they are shown: the families in the order of
// Prices::knownFamilies, a column for their names and one for each of PriceSettings::members.

/// The headings of all columns, in the interface language.
std::vector<std::string> priceHeadings();

/// The heading above the table, which tells the unit.
std::string priceTitle();

/// "Opus", "GPT".
std::string familyName(std::string_view family);

/// US dollars as digits, with two to four decimals: "6,25", "0,125".
std::string priceText(double usdPerMillion);

/// A row for each family that has prices.
FigureTable priceTable(const Prices::Book& book);

/// Which families have none, in a sentence; empty where all have.
std::string withoutPriceText(const Prices::Book& book);

/// How what the agents bill compares with the book, in a sentence; empty for a flat rate.
std::string comparisonText(const std::optional<Prices::Verdict>& verdict, const Prices::Book& book);

}  // namespace fleetwise
