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

namespace fleetwise {

namespace {

constexpr int searchWidth = 120;

QString named(std::string_view raw) {
    return QString::fromUtf8(raw.data(), static_cast<qsizetype>(raw.size()));
}

}  // namespace

FilterBar::FilterBar(FleetMonitor& givenMonitor, QWidget* parent)
    : QWidget(parent),
      monitor(givenMonitor),
      search(new SearchField),
      density(new ChipButton(shown("Zweizeilig"_text))) {
    search->setPlaceholderText(shown("Suchen"_text));
    search->setAccessibleName(shown("Sitzungen suchen"_text));
    search->setToolTip(shown("Name, Pfad, Branch, Anwendung, Modell, Meldung (Strg+F)"_text));
    search->setMinimumWidth(searchWidth);
    search->installEventFilter(this);
    connect(search, &QLineEdit::textChanged, this,
            [this](const QString& text) { monitor.setSearch(text.toStdString()); });
    grouping = modeBox(allGroupModes, Settings::groupMode, shown("Gruppieren nach"_text));
    order = modeBox(allSortModes, Settings::sortMode, shown("Sortieren nach"_text));
    connect(density, &QToolButton::toggled, this, [this](bool isComfortable) {
        monitor.change(Settings::density, isComfortable ? "comfortable" : "compact");
    });

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::gap, Metrics::margin, Metrics::gap);
    layout->setSpacing(Metrics::gap);
    layout->addWidget(search, 1);
    makeFilters();
    for (const auto& [filter, button] : filters)
        layout->addWidget(button);
    layout->addSpacing(Metrics::gap);
    for (QWidget* widget : {static_cast<QWidget*>(grouping), static_cast<QWidget*>(order),
                            static_cast<QWidget*>(density)})
        layout->addWidget(widget);
    auto* view = new ChipButton(shown("Ansicht"_text));
    view->setCheckable(false);
    view->setPopupMode(QToolButton::InstantPopup);
    view->setMenu(makeViewMenu(
        monitor, [this] { emit usageWanted(); }, view));
    layout->addWidget(view);
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
