#include "ui/details/selection_panel.h"

#include "monitor/fleet_monitor.h"
#include "ui/base/flow_layout.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/details/detail_list.h"
#include "ui/details/detail_rows.h"
#include "ui/details/details_section.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <functional>

namespace fleetwise {

SelectionPanel::SelectionPanel(FleetMonitor& givenMonitor, QWidget* parent)
    : QWidget(parent),
      monitor(givenMonitor),
      count(new QLabel),
      states(new DetailList),
      costSection(new DetailsSection(shown("Tokens und Kosten"_text))),
      costs(new DetailList) {
    costSection->add(costs);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Metrics::groupGap);
    for (QWidget* widget : {static_cast<QWidget*>(count), static_cast<QWidget*>(states),
                            makeActions(), static_cast<QWidget*>(costSection)})
        column->addWidget(widget);
    column->addStretch(1);
    followFont();
}

QWidget* SelectionPanel::makeActions() {
    auto* buttons = new QWidget;
    auto* flow = new FlowLayout(Qt::AlignLeft, buttons);
    flow->setContentsMargins(0, 0, 0, 0);
    flow->setSpacing(Metrics::gap);
    const auto add = [&](const QString& text, const QString& tooltip,
                         void (FleetMonitor::*action)(const std::vector<std::string>&)) {
        auto* button = new QPushButton(text);
        button->setAutoDefault(false);
        button->setToolTip(tooltip);
        connect(button, &QPushButton::clicked, this, [this, &fleet = monitor, action] {
            // The list, and with it the selection, may change meanwhile.
            const auto meant = ids;
            std::invoke(action, fleet, meant);
        });
        flow->addWidget(button);
    };
    add(shown("Anheften"_text), shown("Sind alle angeheftet, löst es sie wieder"_text),
        &FleetMonitor::toggleFavorites);
    add(shown("Stumm schalten"_text), shown("Sind alle stumm, melden sie sich wieder"_text),
        &FleetMonitor::toggleNotifyingOf);
    add(shown("Aus der Liste entfernen"_text), {}, &FleetMonitor::dismissAll);
    return buttons;
}

void SelectionPanel::setSessions(const std::vector<std::string>& newIds) {
    ids = newIds;
    std::vector<const Session*> sessions;
    for (const std::string& id : ids) {
        if (const Session* session = monitor.session(id)) sessions.push_back(session);
    }
    count->setText(shownCount(static_cast<std::int64_t>(sessions.size()), "%d Sitzung"_text,
                              "%d Sitzungen"_text));
    states->setRows(stateRows(sessions));
    const auto sum = sumRows(monitor, ids);
    costs->setRows(sum);
    costSection->setVisible(!sum.empty());
}

void SelectionPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) followFont();
}

void SelectionPanel::followFont() {
    count->setFont(headingFont(font()));
}

}  // namespace fleetwise
