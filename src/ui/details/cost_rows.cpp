// The rows about costs.

#include "cost/session_cost.h"
#include "fleet/cost_texts.h"
#include "localisation/number_format.h"
#include "monitor/fleet_monitor.h"
#include "session/model_name.h"
#include "ui/base/cost_display.h"
#include "ui/base/interface_text.h"
#include "ui/details/detail_rows.h"

#include <algorithm>

namespace fleetwise {

namespace {

using Model = ModelSlices::value_type;

/// What the agent billed for the model, else what its tokens cost by the book.
Money moneyOf(const Model& model, const SessionCost& cost, MoneyBasis basis,
              const Prices::Book& book) {
    const CostFigures figures = figuresOf({model}, book);
    if (basis != MoneyBasis::billed) return figures.money(basis);
    const auto billed = std::ranges::find(cost.billedModels, model.first, &BilledSlice::model);
    if (billed != cost.billedModels.end()) return {.usd = billed->costUSD};
    Money estimate = figures.money(MoneyBasis::api);
    estimate.isEstimated = estimate.usd.has_value();
    return estimate;
}

QString tokensOf(const ModelSlice& slice) {
    const TokenTally& tally = slice.tally;
    QString text = shown("Tokens: Eingabe %@, Ausgabe %@"_text, groupedNumber(tally.input),
                         groupedNumber(tally.output));
    if (tally.cacheRead > 0 || tally.cacheWrites() > 0) {
        text += u'\n' + shown("Cache: gelesen %@, geschrieben %@"_text,
                              groupedNumber(tally.cacheRead), groupedNumber(tally.cacheWrites()));
    }
    return text + u'\n' + shown("Anfragen: %@"_text, groupedNumber(slice.requests));
}

DetailRow modelRow(const Model& model, const SessionCost& cost, const CostDisplay& display,
                   const Prices::Book& book) {
    const QString name = qtText(displayModelName(model.first));
    DetailRow row{.text = name.isEmpty() ? shown("Ohne Modell"_text) : name,
                  .detail = tokensOf(model.second)};
    if (display.extent != CostDisplay::Extent::nothing) {
        row.figure = qtText(costText(moneyOf(model, cost, display.basis, book)));
    }
    return row;
}

}  // namespace

std::vector<DetailRow> sumRows(const FleetMonitor& monitor, const std::vector<std::string>& ids) {
    const CostDisplay display = costDisplay(monitor.settings());
    const CostFigures figures = monitor.figures(ids);
    const std::string amount = costText(figures.money(display.basis));
    const bool isShown = display.extent != CostDisplay::Extent::nothing && !amount.empty();
    if (!isShown && figures.tally.all() == 0) return {};
    return {{.text = shown("Summe"_text),
             .figure = isShown ? qtText(amount) : QString(),
             .detail = shown("%@ Tokens"_text, groupedNumber(figures.tally.all())),
             .tooltip = isShown ? qtText(costExplanation(figures, display.basis)) : QString()}};
}

std::vector<DetailRow> costRows(const FleetMonitor& monitor, const std::string& sessionId) {
    const auto cost = monitor.cost(sessionId);
    if (!cost) return {};
    std::vector<const Model*> models;
    for (const Model& model : cost->usage.byModel) {
        if (model.second.tally.all() > 0) models.push_back(&model);
    }
    std::ranges::stable_sort(models, std::greater(),
                             [](const Model* model) { return model->second.tally.all(); });
    std::vector<DetailRow> rows = sumRows(monitor, {sessionId});
    for (const Model* model : models) {
        rows.push_back(
            modelRow(*model, *cost, costDisplay(monitor.settings()), monitor.priceBook()));
    }
    return rows;
}

}  // namespace fleetwise
