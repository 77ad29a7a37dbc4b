#include "ui/usage/figure_choice.h"

#include "ui/base/chip_choice.h"
#include "ui/base/cost_display.h"
#include "ui/base/interface_text.h"

#include <QBoxLayout>

namespace fleetwise {

UsageColumns wantedColumns(const Settings& settings) {
    const bool tellsMoney = costDisplay(settings).extent != CostDisplay::Extent::nothing;
    return {.tokens = settings.get(Settings::usageShowsTokens),
            .money = settings.get(Settings::usageShowsMoney) && tellsMoney};
}

FigureChoice::FigureChoice(const FleetMonitor& givenMonitor, QWidget* parent)
    : QWidget(parent),
      monitor(givenMonitor),
      choice(new ChipChoice(shown("Werte"_text), {shown("Tokens"_text), shown("Geld"_text)})) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(choice);
    connect(choice, &ChipChoice::changed, this, &FigureChoice::changed);
}

UsageFigure FigureChoice::figure() const {
    const UsageColumns columns = wanted();
    const bool wantsMoney = choice->chosen() == 1 || !columns.tokens;
    return wantsMoney && columns.money ? UsageFigure::money : UsageFigure::tokens;
}

void FigureChoice::follow() {
    const UsageColumns columns = wanted();
    setVisible(columns.tokens && columns.money);
    choice->choose(figure() == UsageFigure::money ? 1 : 0);
}

}  // namespace fleetwise
