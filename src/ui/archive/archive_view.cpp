#include "ui/archive/archive_view.h"

#include "fleet/cost_texts.h"
#include "foundation/text.h"
#include "localisation/day_format.h"
#include "localisation/number_format.h"
#include "ui/archive/archive_header.h"
#include "ui/archive/archive_model.h"
#include "ui/archive/archive_row_delegate.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QActionGroup>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QShortcut>
#include <QStringList>
#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::uint64_t wideSize = 888'800'000'000;
constexpr Money wideAmount{.usd = 888.88, .isEstimated = true, .isIncomplete = true};

// In characters.
constexpr int fewestOfName = 28;
constexpr int fewestOfProject = 12;
constexpr int mostOfProject = 24;

/// In the interface language, in which months may have names.
int widestDate(const QFontMetrics& metrics) {
    int widest = 0;
    for (int month = 1; month <= 12; ++month) {
        const std::string day = dayText(fmt::format("2088-{:02}-28", month));
        widest = std::max(widest, metrics.horizontalAdvance(qtText(day + " 08:88")));
    }
    return widest;
}

void putOnClipboard(const QStringList& lines) {
    if (!lines.isEmpty()) QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

}  // namespace

ArchiveView::ArchiveView(FleetMonitor& givenMonitor, ArchiveModel& givenModel)
    : monitor(givenMonitor), list(givenModel) {
    setHorizontalHeader(new ArchiveHeader(this));
    setModel(&list);
    setItemDelegate(new ArchiveRowDelegate(list, *this));
    setAccessibleName(shown("Vorige Sitzungen"_text));
    setSelectionBehavior(SelectRows);
    setFrameShape(NoFrame);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setCornerButtonEnabled(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSortIndicator(ArchiveModel::dateColumn, Qt::DescendingOrder);
    setSortingEnabled(true);
    fitToFont();
    addKeys();
    connect(this, &QAbstractItemView::doubleClicked, this, &ArchiveView::activateCurrent);
    connect(&list, &ArchiveModel::aboutToUpdate, this, &ArchiveView::rememberSelection);
    connect(&list, &ArchiveModel::updated, this, &ArchiveView::restoreSelection);
}

void ArchiveView::addKeys() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        auto* shortcut = new QShortcut(keys, this);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, action);
    };
    add(Qt::Key_Return, &ArchiveView::activateCurrent);
    add(Qt::Key_Enter, &ArchiveView::activateCurrent);
    add(QKeySequence::Copy, &ArchiveView::copyCommands);
}

void ArchiveView::fitToFont() {
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(ArchiveRowDelegate::rowHeight(fontMetrics()));
    fitColumns();
}

/// Figures get what the longest usual ones need, names what is left. Too narrow a table scrolls.
void ArchiveView::fitColumns() {
    const int character = fontMetrics().averageCharWidth();
    int room = viewport()->width();
    const auto setWidth = [&](int column, int width) {
        setColumnWidth(column, width);
        if (!isColumnHidden(column)) room -= width;
    };
    const auto fit = [&](int column, int width) {
        setWidth(column, width + Metrics::gap + Metrics::margin);
    };
    const auto widthOf = [&](const std::string& text) {
        return fontMetrics().horizontalAdvance(qtText(text));
    };
    fit(ArchiveModel::dateColumn, widestDate(fontMetrics()));
    fit(ArchiveModel::sizeColumn, widthOf(byteCountText(wideSize)));
    fit(ArchiveModel::costColumn, widthOf(costText(wideAmount)));
    setWidth(ArchiveModel::projectColumn,
             std::clamp(room / 4, fewestOfProject * character, mostOfProject * character));
    setWidth(ArchiveModel::nameColumn, std::max(room, fewestOfName * character));
}

void ArchiveView::setShowsCosts(bool showsCosts) {
    setColumnHidden(ArchiveModel::costColumn, !showsCosts);
    fitColumns();
}

void ArchiveView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    fitColumns();
}

void ArchiveView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange) fitToFont();
}

const ArchiveEntry* ArchiveView::currentEntry() const {
    return list.entry(currentIndex());
}

void ArchiveView::selectSomething() {
    if (!currentIndex().isValid() && list.rowCount() > 0) selectRow(0);
}

void ArchiveView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    // The ground of a row changes as a whole.
    viewport()->update();
    emit currentEntryChanged();
}

std::vector<const ArchiveEntry*> ArchiveView::selectedEntries() const {
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    std::vector<const ArchiveEntry*> entries;
    for (const QModelIndex& row : rows) {
        if (const ArchiveEntry* entry = list.entry(row)) entries.push_back(entry);
    }
    return entries;
}

void ArchiveView::rememberSelection() {
    const ArchiveEntry* current = currentEntry();
    rememberedCurrent = current == nullptr ? std::string() : current->id;
    rememberedIds.clear();
    for (const ArchiveEntry* entry : selectedEntries())
        rememberedIds.push_back(entry->id);
}

void ArchiveView::restoreSelection() {
    if (rememberedIds.empty() && rememberedCurrent.empty()) return;
    QItemSelection selection;
    for (const std::string& id : std::exchange(rememberedIds, {})) {
        if (const QModelIndex index = list.indexOf(id); index.isValid()) {
            selection.select(index, index);
        }
    }
    const auto rows = QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
    const QModelIndex current = list.indexOf(std::exchange(rememberedCurrent, {}));
    if (current.isValid())
        selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    if (!selection.isEmpty()) selectionModel()->select(selection, rows);
}

void ArchiveView::activateCurrent() {
    const ArchiveEntry* entry = currentEntry();
    if (entry == nullptr) return;
    if (list.liveState(entry->id)) {
        monitor.focus(entry->id);
        if (const auto notice = monitor.notice(entry->id)) emit told(qtText(*notice));
        return;
    }
    const auto resumed = monitor.resumePast(entry->asSession());
    if (!resumed) emit told(qtText(resumed.error()));
}

void ArchiveView::copyCommands() {
    QStringList commands;
    QString problem;
    for (const ArchiveEntry* entry : selectedEntries()) {
        const auto command = monitor.resumeTextOfPast(entry->asSession());
        if (command) {
            commands << qtText(*command);
        } else {
            problem = qtText(command.error());
        }
    }
    putOnClipboard(commands);
    if (!problem.isEmpty()) emit told(problem);
}

void ArchiveView::copyEach(std::string (*text)(const ArchiveEntry&)) {
    QStringList lines;
    for (const ArchiveEntry* entry : selectedEntries())
        lines << qtText(printable(text(*entry)));
    lines.removeAll(QString());
    putOnClipboard(lines);
}

/// What the headings do by the mouse.
void ArchiveView::addSortMenu(QMenu& menu) {
    auto* group = new QActionGroup(&menu);
    for (int column = 0; column < ArchiveModel::columnEnd; ++column) {
        if (isColumnHidden(column)) continue;
        QAction* action =
            group->addAction(list.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
        action->setCheckable(true);
        action->setChecked(horizontalHeader()->sortIndicatorSection() == column);
        connect(action, &QAction::triggered, this, [this, column] {
            const QVariant order =
                list.headerData(column, Qt::Horizontal, Qt::InitialSortOrderRole);
            sortByColumn(column, static_cast<Qt::SortOrder>(order.toInt()));
        });
        menu.addAction(action);
    }
}

void ArchiveView::contextMenuEvent(QContextMenuEvent* event) {
    const ArchiveEntry* entry = currentEntry();
    if (entry == nullptr || selectedEntries().empty()) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString& text, auto action) {
        return menu->addAction(text, this, std::move(action));
    };
    QAction* activate =
        add(list.liveState(entry->id) ? shown("Fenster nach vorn"_text) : shown("Fortsetzen"_text),
            &ArchiveView::activateCurrent);
    activate->setShortcut(Qt::Key_Return);
    activate->setEnabled(selectedEntries().size() == 1);
    menu->addSeparator();
    add(shown("Befehl zum Fortsetzen kopieren"_text), &ArchiveView::copyCommands)
        ->setShortcut(QKeySequence::Copy);
    add(shown("Pfad kopieren"_text),
        [this] { copyEach([](const ArchiveEntry& each) { return each.cwd; }); });
    add(shown("Sitzungs-ID kopieren"_text),
        [this] { copyEach([](const ArchiveEntry& each) { return each.id; }); });
    add(shown("Pfad des Verlaufs kopieren"_text),
        [this] { copyEach([](const ArchiveEntry& each) { return each.path; }); });
    menu->addSeparator();
    addSortMenu(*menu->addMenu(shown("Sortieren nach"_text)));
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    menu->popup(isByKey ? viewport()->mapToGlobal(visualRect(currentIndex()).center())
                        : event->globalPos());
}

}  // namespace fleetwise
