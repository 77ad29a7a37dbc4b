#pragma once

#include "cost/cost_figures.h"
#include "cost/cost_store.h"
#include "cost/prices.h"

#include <optional>
#include <string>

namespace fleetwise {

// What the user reads about costs, in the interface language.

/// An amount as short as it can be: "0,42 $", "≈ 0,42 $" where it is estimated, "0,42 $ + ?" where
/// something is missing in it, "ohne Preis" where all is. Empty where there is nothing to tell.
std::string costText(const Money& money);

/// All that the figures tell, in several lines with the amount by `basis` first; empty where
/// nothing was used.
std::string costExplanation(const CostFigures& figures, MoneyBasis basis);

/// Where the prices come from, and of which day they are.
std::string priceBookText(const Prices::Book& book);

/// What the verdict over a book says is wrong with its prices, in a sentence; empty where nothing
/// is, and for a flat rate, which is no list that could be out of date.
std::string verdictText(const Prices::Verdict& verdict, const Prices::Book& book);

/// The amount that several sessions come to, the tokens and the price book, on one line that says
/// so where the verdict finds the prices outdated. Empty where nothing was used.
std::string totalText(const CostFigures& figures, MoneyBasis basis, const Prices::Book& book,
                      const std::optional<Prices::Verdict>& verdict);

/// How far the reading of the transcripts has come.
std::string scanText(const CostStore::Progress& progress);

}  // namespace fleetwise
