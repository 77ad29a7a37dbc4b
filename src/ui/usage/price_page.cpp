#include "ui/usage/price_page.h"

#include "fleet/cost_texts.h"
#include "ui/base/cost_display.h"
#include "ui/base/figure_table_model.h"
#include "ui/base/interface_text.h"
#include "ui/base/plain_table.h"
#include "ui/base/price_table.h"
#include "ui/base/theme.h"

#include <QBoxLayout>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>

namespace fleetwise {

PricePage::PricePage(FleetMonitor& givenMonitor, QWidget* parent)
    : UsagePage(parent),
      monitor(givenMonitor),
      heading(new QLabel(qtText(priceTitle()))),
      origin(new QLabel),
      comparison(new QLabel),
      withoutPrice(new QLabel),
      view(new PlainTable(qtText(priceTitle()), static_cast<int>(Prices::knownFamilies.size()))),
      model(new FigureTableModel(this)) {
    view->setModel(model);
    view->setAlternatingRowColors(true);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    layOut();
}

void PricePage::layOut() {
    heading->setFont(headingFont(font()));
    for (QLabel* label : {heading, origin, comparison, withoutPrice}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    for (QLabel* label : {origin, comparison, withoutPrice})
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    for (QLabel* label : {comparison, withoutPrice})
        label->setForegroundRole(QPalette::PlaceholderText);
    auto* change = new QPushButton(shown("Preise ändern …"_text));
    connect(change, &QPushButton::clicked, this, &PricePage::settingsWanted);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::margin);
    layout->setSpacing(Metrics::gap);
    layout->addWidget(heading);
    layout->addWidget(origin);
    layout->addWidget(comparison);
    layout->addWidget(view);
    layout->addWidget(withoutPrice);
    layout->addWidget(change, 0, Qt::AlignLeft);
    layout->addStretch();
}

QString PricePage::name() const {
    return shown("Preise"_text);
}

bool PricePage::isWanted() const {
    return monitor.settings().get(Settings::usageShowsMoney) &&
           costDisplay(monitor.settings()).extent != CostDisplay::Extent::nothing;
}

void PricePage::refresh(Date) {
    const Prices::Book& book = monitor.priceBook();
    origin->setText(qtText(priceBookText(book)));
    comparison->setText(qtText(comparisonText(monitor.priceVerdict(), book)));
    comparison->setVisible(!comparison->text().isEmpty());
    withoutPrice->setText(qtText(withoutPriceText(book)));
    withoutPrice->setVisible(!withoutPrice->text().isEmpty());
    model->setTable(priceTable(book));
    // Only now are there columns.
    view->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    // All prices are the same one under a flat rate.
    view->setVisible(book.origin.kind != Prices::Origin::Kind::flat);
}

void PricePage::changeEvent(QEvent* event) {
    UsagePage::changeEvent(event);
    if (event->type() == QEvent::FontChange) heading->setFont(headingFont(font()));
}

}  // namespace fleetwise
