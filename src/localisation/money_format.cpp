#include "localisation/money_format.h"

#include "localisation/localisation.h"
#include "localisation/number_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace fleetwise {

namespace {

/// Where the sign of the currency stands.
struct CurrencyForm {
    std::string_view before;
    std::string_view behind;
};

CurrencyForm currencyForm(std::string_view language) {
    if (language == "en") return {"$", ""};
    if (language == "fr") return {"", "\u00A0$US"};
    if (language == "es") return {"", " US$"};
    if (language == "it") return {"", " USD"};
    if (language == "pl") return {"", "\u00A0USD"};
    return {"", " $"};
}

/// The magnitude, bounded so that it can be counted in cents.
double countable(double usd) {
    constexpr double most = 1e12;
    return std::isnan(usd) ? 0 : std::min(std::abs(usd), most);
}

std::string figure(double magnitude) {
    constexpr std::int64_t centsWithoutDecimals = 100'000;
    const std::int64_t cents = std::llround(magnitude * 100);
    if (cents >= centsWithoutDecimals) return groupedNumber(std::llround(magnitude));
    return fixedNumber(cents, 2);
}

}  // namespace

std::string moneyText(double usd) {
    constexpr double halfACent = 0.005;
    const CurrencyForm form = currencyForm(interfaceLanguageInUse());
    const double magnitude = countable(usd);
    const bool isTiny = magnitude < halfACent;
    const bool isMoreThanNothing = usd > 0;
    std::string_view sign;
    if (isTiny && isMoreThanNothing) sign = "< ";
    if (!isTiny && !isMoreThanNothing) sign = "-";
    const std::string shown = figure(isTiny && isMoreThanNothing ? 0.01 : magnitude);
    return fmt::format("{}{}{}{}", sign, form.before, shown, form.behind);
}

}  // namespace fleetwise
