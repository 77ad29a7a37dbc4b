#include "app/cost_report.h"

#include "fleet/cost_texts.h"
#include "localisation/number_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fleetwise {

namespace {

std::string amountsText(const CostFigures& figures) {
    std::string text;
    for (const auto& [money, name] :
         {std::pair(&figures.billed, "abgerechnet"), std::pair(&figures.api, "API-Preis"),
          std::pair(&figures.uncached, "ohne Cache")}) {
        if (!money->usd) continue;
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", costText(*money), name);
    }
    return text.empty() ? "ohne Preis" : text;
}

std::string tokensText(const TokenTally& tally) {
    return fmt::format(
        "Eingabe {}, Ausgabe {} (davon Denken {}), Cache gelesen {}, "
        "Cache geschrieben {} (5 min {}, 1 h {}, unbekannt {})",
        groupedNumber(tally.input), groupedNumber(tally.output), groupedNumber(tally.thinking),
        groupedNumber(tally.cacheRead), groupedNumber(tally.cacheWrites()),
        groupedNumber(tally.cacheWrite5m), groupedNumber(tally.cacheWrite1h),
        groupedNumber(tally.cacheWriteUnknown));
}

/// All requests, and those of each model, the one that was asked most first.
std::string requestsText(const Usage& usage) {
    std::vector<std::pair<std::string, std::int64_t>> models;
    for (const auto& [model, slice] : usage.byModel)
        models.emplace_back(model.empty() ? "ohne Modell" : model, slice.requests);
    std::ranges::stable_sort(models, std::ranges::greater{},
                             &std::pair<std::string, std::int64_t>::second);
    std::vector<std::string> parts;
    for (const auto& [model, requests] : models)
        parts.push_back(fmt::format("{} {}", model, groupedNumber(requests)));
    return fmt::format("{} – {}", groupedNumber(usage.requests()), fmt::join(parts, ", "));
}

/// With whom the session has most of its past in common; empty where it has nothing in common.
std::string sharedText(const SessionCost& session, const SessionCosts& all) {
    std::size_t longest = 0;
    std::string_view relative;
    for (const auto& [id, other] : all) {
        if (other.get() == &session || other->family != session.family) continue;
        const std::size_t past = session.trail.commonPast(other->trail);
        if (past > longest) relative = id;
        longest = std::max(longest, past);
    }
    if (longest == 0) return {};
    return fmt::format("{} Anfragen mit {}, in Summen einmal gezählt",
                       groupedNumber(static_cast<std::int64_t>(longest)), relative);
}

}  // namespace

void addCosts(ReportBlock& block, const SessionCost& session, const SessionCosts& all,
              const Prices::Book& book) {
    if (session.requests() == 0 && !session.billedUSD) return;
    const CostFigures figures = session.figures(book);
    block.line("Kosten", amountsText(figures));
    block.line("Tokens", tokensText(figures.tally));
    block.line("Anfragen", requestsText(session.usage));
    block.line("Gemeinsam", sharedText(session, all));
    block.line("Ohne Preis", fmt::format("{}", fmt::join(figures.modelsWithoutPrice, ", ")));
    if (const auto verdict = session.priceVerdict(book))
        block.line("Preise", verdictText(*verdict, book));
}

}  // namespace fleetwise
