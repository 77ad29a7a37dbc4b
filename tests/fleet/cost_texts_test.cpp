#include "fleet/cost_texts.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

using Verdict = Prices::Verdict;

TEST(CostTexts, tellHowSureAnAmountIs) {
    const struct {
        Money money;
        const char* expected;
    } rows[] = {
        {{}, ""},
        {{.isEstimated = true}, ""},
        {{.isIncomplete = true}, "ohne Preis"},
        {{.usd = 0.0}, "0,00 $"},
        {{.usd = 0.42, .isEstimated = true}, "≈ 0,42 $"},
        {{.usd = 0.42, .isIncomplete = true}, "0,42 $ + ?"},
        {{.usd = 0.42, .isEstimated = true, .isIncomplete = true}, "≈ 0,42 $ + ?"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(costText(row.money), row.expected);
}

TEST(CostTexts, explainFiguresWithTheChosenAmountFirst) {
    const CostFigures figures{
        .tally = {.input = 1200, .output = 800, .thinking = 300, .cacheRead = 2'000'000},
        .requests = 12,
        .billed = {.usd = 0.42, .isEstimated = true},
        .api = {.usd = 0.41, .isIncomplete = true},
        .uncached = {.isIncomplete = true},
        .modelsWithoutPrice = {"claude-sonnet-5-5"}};
    const std::string rest =
        "Tokens: Eingabe 1.200, Ausgabe 800 (davon Denken 300)\n"
        "Cache: gelesen 2.000.000, geschrieben 0\n"
        "Anfragen: 12\n"
        "Ohne Preis: claude-sonnet-5-5";
    EXPECT_EQ(costExplanation(figures, MoneyBasis::billed),
              "Abgerechnet: ≈ 0,42 $\nAPI-Preis: 0,41 $ + ?\nOhne Cache: ohne Preis\n" + rest +
                  "\nGeschätzt: dafür gibt es keine vollständige Abrechnung.");
    EXPECT_EQ(costExplanation(figures, MoneyBasis::api),
              "API-Preis: 0,41 $ + ?\nAbgerechnet: ≈ 0,42 $\nOhne Cache: ohne Preis\n" + rest);
    EXPECT_EQ(costExplanation({}, MoneyBasis::billed), "");

    const Money unsure{.usd = 0.1, .isIncomplete = true};
    EXPECT_EQ(
        costExplanation({.tally = {.input = 1}, .requests = 1, .api = unsure}, MoneyBasis::api),
        "API-Preis: 0,10 $ + ?\nTokens: Eingabe 1, Ausgabe 0\nAnfragen: 1\n"
        "Unvollständig: nicht für alle Tokens gibt es einen Preis.");
}

TEST(CostTexts, tellWherePricesComeFrom) {
    const auto book = [](Prices::Origin::Kind kind) {
        return Prices::Book{.asOf = "2026-08-27", .origin = {.kind = kind}};
    };
    using enum Prices::Origin::Kind;
    EXPECT_EQ(priceBookText(book(builtIn)), "Eingebaute Preisliste, Stand 27.08.2026");
    EXPECT_EQ(priceBookText(book(fetched)), "Preisliste aus dem Update-Feed, Stand 27.08.2026");
    EXPECT_EQ(priceBookText(book(custom)), "Eigene Preise über der Liste vom 27.08.2026");
    EXPECT_EQ(priceBookText(Prices::flatBook(5)), "Pauschal 5,00 $ je Million Tokens");
}

TEST(CostTexts, tellWhatIsWrongWithPrices) {
    using enum Verdict::Kind;
    const struct {
        Verdict verdict;
        const char* expected;
    } rows[] = {
        {{.kind = consistent, .deviation = 0.01}, ""},
        {{.kind = outdated, .deviation = 0.054},
         "Die Agenten rechnen 5 % mehr ab, als die Preisliste ergibt: sie ist wohl veraltet."},
        {{.kind = outdated, .deviation = -0.1},
         "Die Agenten rechnen 10 % weniger ab, als die Preisliste ergibt: sie ist wohl veraltet."},
        {{.kind = unknownModel, .text = "gpt-6-sol"},
         "Für gpt-6-sol steht kein Preis in der Liste."},
        {{.kind = notComparable, .text = "webSearchRequests"},
         "Mit der Abrechnung nicht vergleichbar (Websuche)."},
        {{.kind = notComparable, .text = "keine Token"},
         "Mit der Abrechnung nicht vergleichbar (keine Tokens)."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(verdictText(row.verdict, Prices::Book::builtIn()), row.expected);
    EXPECT_EQ(verdictText({.kind = outdated, .deviation = 1}, Prices::flatBook(1)), "");
}

TEST(CostTexts, sumUpOnOneLine) {
    const CostFigures figures{.tally = {.input = 3'120'000}, .billed = {.usd = 12.4}};
    const auto total = [&](std::optional<Verdict> verdict) {
        return totalText(figures, MoneyBasis::billed, Prices::Book::builtIn(), verdict);
    };
    const std::string rest = " · 3.120.000 Tokens · Eingebaute Preisliste, Stand 27.08.2026";
    EXPECT_EQ(total({}), "Summe 12,40 $" + rest);
    EXPECT_EQ(total(Verdict{.kind = Verdict::Kind::notComparable}), "Summe 12,40 $" + rest);
    EXPECT_EQ(total(Verdict{.kind = Verdict::Kind::outdated}),
              "Summe 12,40 $" + rest + " · wohl veraltet");
    EXPECT_EQ(totalText({}, MoneyBasis::billed, Prices::Book::builtIn(), {}), "");
    EXPECT_EQ(
        scanText(
            {.files = 360, .filesDone = 120, .bytes = 1'000'000'000, .bytesDone = 412'000'000}),
        "Kosten werden gelesen: 120 von 360 Dateien · 412 MB von 1,0 GB");
}

}  // namespace
}  // namespace fleetwise::testing
