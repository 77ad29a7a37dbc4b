#include "ui/settings/price_input.h"

#include "cost/price_block.h"
#include "localisation/number_input.h"
#include "ui/base/interface_text.h"
#include "ui/base/price_table.h"

namespace fleetwise {

namespace {

constexpr int priceDecimals = 4;
constexpr double priceUnits = 10'000;
constexpr double examplePrice = 12.5;

QString wordsOf(NumberFault fault) {
    switch (fault) {
        case NumberFault::tooLarge:
            return shown("Höchstens %@."_text, priceText(maximumUsdPerMillion));
        case NumberFault::tooPrecise:
            return shown("Höchstens vier Stellen hinter dem Komma."_text);
        case NumberFault::notANumber:
            break;
    }
    return shown("Das lässt sich nicht als Zahl lesen. Schreibe etwa %@."_text,
                 priceText(examplePrice));
}

}  // namespace

tl::expected<std::optional<double>, QString> readPrice(const QString& text) {
    const std::string typed = text.trimmed().toStdString();
    if (typed.empty()) return std::nullopt;
    const auto units = parseNumber(typed, priceDecimals, interfaceLanguageInUse());
    if (!units) return tl::unexpected(wordsOf(units.error()));
    const double price = static_cast<double>(*units) / priceUnits;
    if (!isPossiblePrice(price)) return tl::unexpected(wordsOf(NumberFault::tooLarge));
    return price;
}

}  // namespace fleetwise
