#include "fleet/cost_texts.h"

#include "localisation/day_format.h"
#include "localisation/localisation.h"
#include "localisation/money_format.h"
#include "localisation/number_format.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace fleetwise {

namespace {

std::string basisName(MoneyBasis basis) {
    switch (basis) {
        case MoneyBasis::api:
            return localised("API-Preis"_text);
        case MoneyBasis::uncached:
            return localised("Ohne Cache"_text);
        case MoneyBasis::billed:
            break;
    }
    return localised("Abgerechnet"_text);
}

void addLine(std::string& text, const std::string& line) {
    if (line.empty()) return;
    if (!text.empty()) text += '\n';
    text += line;
}

void addAmount(std::string& text, const CostFigures& figures, MoneyBasis basis) {
    const std::string amount = costText(figures.money(basis));
    if (!amount.empty()) addLine(text, fmt::format("{}: {}", basisName(basis), amount));
}

void addTokens(std::string& text, const TokenTally& tally) {
    std::string line = localisedFormat("Tokens: Eingabe %@, Ausgabe %@"_text,
                                       groupedNumber(tally.input), groupedNumber(tally.output));
    if (tally.thinking > 0) {
        line += " " + localisedFormat("(davon Denken %@)"_text, groupedNumber(tally.thinking));
    }
    addLine(text, line);
    if (tally.cacheRead == 0 && tally.cacheWrites() == 0) return;
    addLine(text,
            localisedFormat("Cache: gelesen %@, geschrieben %@"_text,
                            groupedNumber(tally.cacheRead), groupedNumber(tally.cacheWrites())));
}

void addDoubts(std::string& text, const CostFigures& figures, const Money& money) {
    if (!figures.modelsWithoutPrice.empty()) {
        addLine(text,
                localisedFormat("Ohne Preis: %@"_text,
                                fmt::format("{}", fmt::join(figures.modelsWithoutPrice, ", "))));
    } else if (money.isIncomplete) {
        addLine(text, localised("Unvollständig: nicht für alle Tokens gibt es einen Preis."_text));
    }
    if (!money.isEstimated) return;
    addLine(text, localised("Geschätzt: dafür gibt es keine vollständige Abrechnung."_text));
}

std::string deviationText(double deviation) {
    const long percent = std::lround(std::abs(deviation) * 100);
    if (deviation < 0) {
        return localisedFormat(
            "Die Agenten rechnen %d %% weniger ab, als die Preisliste ergibt: sie ist wohl veraltet."_text,
            percent);
    }
    return localisedFormat(
        "Die Agenten rechnen %d %% mehr ab, als die Preisliste ergibt: sie ist wohl veraltet."_text,
        percent);
}

}  // namespace

std::string costText(const Money& money) {
    if (!money.usd) return money.isIncomplete ? localised("ohne Preis"_text) : std::string();
    return fmt::format("{}{}{}", money.isEstimated ? "≈ " : "", moneyText(*money.usd),
                       money.isIncomplete ? " + ?" : "");
}

std::string costExplanation(const CostFigures& figures, MoneyBasis basis) {
    constexpr std::array all{MoneyBasis::billed, MoneyBasis::api, MoneyBasis::uncached};
    const bool isUnused = figures.requests == 0 && figures.tally.all() == 0 && !figures.billed.usd;
    if (isUnused) return {};
    std::string text;
    addAmount(text, figures, basis);
    for (const MoneyBasis other : all) {
        if (other != basis) addAmount(text, figures, other);
    }
    addTokens(text, figures.tally);
    if (figures.requests > 0) {
        addLine(text, localisedFormat("Anfragen: %@"_text, groupedNumber(figures.requests)));
    }
    addDoubts(text, figures, figures.money(basis));
    return text;
}

std::string priceBookText(const Prices::Book& book) {
    using enum Prices::Origin::Kind;
    const std::string day = dayText(book.asOf);
    switch (book.origin.kind) {
        case flat:
            return localisedFormat("Pauschal %@ je Million Tokens"_text,
                                   moneyText(book.origin.usdPerMillion));
        case fetched:
            return localisedFormat("Preisliste aus dem Update-Feed, Stand %@"_text, day);
        case custom:
            return localisedFormat("Eigene Preise über der Liste vom %@"_text, day);
        case builtIn:
            break;
    }
    return localisedFormat("Eingebaute Preisliste, Stand %@"_text, day);
}

std::string verdictText(const Prices::Verdict& verdict, const Prices::Book& book) {
    using enum Prices::Verdict::Kind;
    if (book.origin.kind == Prices::Origin::Kind::flat) return {};
    switch (verdict.kind) {
        case outdated:
            return deviationText(verdict.deviation);
        case unknownModel:
            return localisedFormat("Für %@ steht kein Preis in der Liste."_text, verdict.text);
        case notComparable:
            return verdict.text == "webSearchRequests"
                       ? localised("Mit der Abrechnung nicht vergleichbar (Websuche)."_text)
                       : localised("Mit der Abrechnung nicht vergleichbar (keine Tokens)."_text);
        case consistent:
            break;
    }
    return {};
}

std::string totalText(const CostFigures& figures, MoneyBasis basis, const Prices::Book& book,
                      const std::optional<Prices::Verdict>& verdict) {
    const Money& money = figures.money(basis);
    const std::int64_t tokens = figures.tally.all();
    if (!money.usd && tokens == 0) return {};
    std::string text = localisedFormat("Summe %@ · %@ Tokens · %@"_text, costText(money),
                                       groupedNumber(tokens), priceBookText(book));
    const bool isOutdated = book.origin.kind != Prices::Origin::Kind::flat && verdict &&
                            verdict->kind == Prices::Verdict::Kind::outdated;
    return isOutdated ? text + " · " + localised("wohl veraltet"_text) : text;
}

std::string scanText(const CostStore::Progress& progress) {
    return localisedFormat("Kosten werden gelesen: %@ von %@ Dateien · %@ von %@"_text,
                           groupedNumber(static_cast<std::int64_t>(progress.filesDone)),
                           groupedNumber(static_cast<std::int64_t>(progress.files)),
                           byteCountText(progress.bytesDone), byteCountText(progress.bytes));
}

}  // namespace fleetwise
