#include "ui/fleet/filter_bar.h"

#include "ui/base/chip_button.h"
#include "ui/base/interface_text.h"
#include "ui/base/search_field.h"
#include "ui/base/theme.h"
#include "ui/fleet/row_geometry.h"
#include "ui/fleet/view_menu.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QSignalBlocker>

#include <vector>

namespace fleetwise {

namespace {

constexpr int leastSearchCharacters = 14;

QString named(std::string_view raw) {
    return QString::fromUtf8(raw.data(), static_cast<qsizetype>(raw.size()));
}

}  // namespace

FilterBar::FilterBar(FleetMonitor& givenMonitor, QWidget* parent)
    : QWidget(parent),
      monitor(givenMonitor),
      search(new SearchField),
      density(new ChipButton(shown("Zweizeilig"_text))),
      view(new ChipButton(shown("Ansicht"_text))) {
    search->setPlaceholderText(shown("Suchen"_text));
    search->setAccessibleName(shown("Sitzungen suchen"_text));
    search->setToolTip(shown("Name, Pfad, Branch, Anwendung, Modell, Meldung, Ziel (Strg+F)"_text));
    search->installEventFilter(this);
    search->setText(qtText(monitor.search()));
    connect(search, &QLineEdit::textChanged, this,
            [this](const QString& text) { monitor.setSearch(text.toStdString()); });
    grouping = modeBox(allGroupModes, Settings::groupMode, shown("Gruppieren nach"_text));
    order = modeBox(allSortModes, Settings::sortMode, shown("Sortieren nach"_text));
    connect(density, &QToolButton::toggled, this, [this](bool isComfortable) {
        monitor.change(Settings::density,
                       rawValue(isComfortable ? Density::comfortable : Density::compact));
    });
    makeFilters();
    makeViewButton();
    layOut();
    showSettings();
    monitor.addObserver(*this);
}

FilterBar::~FilterBar() {
    monitor.removeObserver(*this);
}

void FilterBar::makeFilters() {
    for (const ListFilter filter : allListFilters) {
        auto* button = new ChipButton(qtText(label(filter)));
        connect(button, &QToolButton::clicked, this,
                [this, filter] { monitor.toggleFilter(filter); });
        filters.emplace(filter, button);
    }
}

void FilterBar::makeViewButton() {
    view->setCheckable(false);
    view->setPopupMode(QToolButton::InstantPopup);
    view->setMenu(makeViewMenu(monitor,
                               {.showUsage = [this] { emit usageWanted(); },
                                .showArchive = [this] { emit archiveWanted(); },
                                .showSettings = [this] { emit settingsWanted(); },
                                .toggleDetails = [this] { emit detailsToggled(); }},
                               view));
}

void FilterBar::layOut() {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::gap, Metrics::margin, Metrics::gap);
    layout->setSpacing(Metrics::gap);
    layout->addWidget(search, 1);
    for (const auto& [filter, button] : filters)
        layout->addWidget(button);
    for (QWidget* widget : {static_cast<QWidget*>(grouping), static_cast<QWidget*>(order),
                            static_cast<QWidget*>(density), static_cast<QWidget*>(view)})
        layout->addWidget(widget);
}

int FilterBar::leastSearchWidth() const {
    return fontMetrics().averageCharWidth() * leastSearchCharacters;
}

QSize FilterBar::minimumSizeHint() const {
    const int width = leastSearchWidth() + Metrics::gap + view->sizeHint().width();
    return {width + 2 * Metrics::margin, sizeHint().height()};
}

void FilterBar::fit() {
    std::vector<QWidget*> choices;
    for (const auto& [filter, button] : filters)
        choices.push_back(button);
    int room = width() - minimumSizeHint().width();
    for (const auto& together : {choices, {grouping}, {order}, {density}}) {
        for (const QWidget* widget : together)
            room -= widget->sizeHint().width() + Metrics::gap;
        for (QWidget* widget : together)
            widget->setVisible(room >= 0);
    }
    showHiddenFilters();
}

void FilterBar::showHiddenFilters() {
    const std::size_t active = monitor.settings().listRules().filters.size();
    const bool isSeen = active == 0 || !filters.begin()->second->isHidden();
    view->setText(isSeen ? shown("Ansicht"_text) : shown("Ansicht (%d)"_text, active));
    view->setToolTip(isSeen ? QString() : shown("Aktive Filter: %d"_text, active));
}

void FilterBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fit();
}

void FilterBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) fit();
}

template <typename Modes>
QComboBox* FilterBar::modeBox(const Modes& modes, const Setting<std::string_view>& setting,
                              const QString& name) {
    auto* box = new QComboBox;
    box->setAccessibleName(name);
    box->setToolTip(name);
    for (const auto mode : modes)
        box->addItem(qtText(label(mode)), named(rawValue(mode)));
    connect(box, &QComboBox::activated, this, [this, box, &setting] {
        monitor.change(setting, box->currentData().toString().toStdString());
    });
    return box;
}

void FilterBar::showSettings() {
    const ListRules rules = monitor.settings().listRules();
    for (const auto& [filter, button] : filters)
        button->setChecked(rules.filters.contains(filter));
    grouping->setCurrentIndex(grouping->findData(named(rawValue(rules.groupMode))));
    order->setCurrentIndex(order->findData(named(rawValue(rules.sortMode))));
    const QSignalBlocker quiet(density);
    density->setChecked(densityFrom(monitor.settings().get(Settings::density)) ==
                        Density::comfortable);
    showHiddenFilters();
}

void FilterBar::focusSearch() {
    search->setFocus(Qt::ShortcutFocusReason);
    search->selectAll();
}

void FilterBar::clearSearch() {
    search->clear();
}

bool FilterBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape) search->clear();
        if (key == Qt::Key_Escape || key == Qt::Key_Down || key == Qt::Key_Return) {
            emit leftSearch();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace fleetwise
