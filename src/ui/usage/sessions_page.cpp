#include "ui/usage/sessions_page.h"

#include "fleet/cost_texts.h"
#include "localisation/number_format.h"
#include "ui/base/chip_button.h"
#include "ui/base/cost_display.h"
#include "ui/base/interface_text.h"
#include "ui/base/search_field.h"
#include "ui/base/table_export.h"
#include "ui/base/theme.h"
#include "ui/usage/figure_choice.h"

#include <QActionGroup>
#include <QBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QShortcut>
#include <QTableView>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int leastVisibleRows = 8;
constexpr int leastNameCharacters = 22;
constexpr int mostTextCharacters = 17;  ///< of a column beside the names
constexpr int measuredSessions = 200;   ///< for the width of the columns
constexpr Seconds messageTime{10};

int sectionOf(SessionColumn column) {
    return static_cast<int>(column);
}

}  // namespace

SessionsPage::SessionsPage(FleetMonitor& givenMonitor, const ArchiveIndex& givenArchive,
                           QWidget* parent)
    : UsagePage(parent),
      monitor(givenMonitor),
      archive(givenArchive),
      filter(model),
      search(new SearchField),
      exportButton(new ChipButton(shown("CSV …"_text))),
      summary(new QLabel),
      view(new QTableView),
      message(new QLabel) {
    layOut();
    prepareView();
    exportButton->setCheckable(false);
    exportButton->setToolTip(shown("Die Werte als CSV-Datei speichern"_text));
    exportButton->setAccessibleName(shown("Als CSV speichern"_text));
    connect(exportButton, &QToolButton::clicked, this, [this] { offerExport(table(), window()); });
    search->setPlaceholderText(shown("Sitzungen suchen"_text));
    search->setAccessibleName(shown("Sitzungen suchen"_text));
    connect(search, &QLineEdit::textChanged, this, [this](const QString& text) {
        filter.setSearch(text);
        showSum();
    });
    search->installEventFilter(this);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, search,
            [this] { search->setFocus(Qt::ShortcutFocusReason); });
}

void SessionsPage::layOut() {
    for (QLabel* label : {summary, message}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    message->hide();
    auto* header = new QHBoxLayout;
    header->setSpacing(Metrics::gap);
    header->addWidget(search, 1);
    header->addWidget(exportButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::margin);
    layout->setSpacing(Metrics::gap);
    layout->addLayout(header);
    layout->addWidget(summary);
    layout->addWidget(view, 1);
    layout->addWidget(message);
}

void SessionsPage::prepareView() {
    view->setModel(&filter);
    view->setAccessibleName(shown("Sitzungen"_text));
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setAlternatingRowColors(true);
    view->setShowGrid(false);
    view->setWordWrap(false);
    view->setTabKeyNavigation(false);
    view->setFrameShape(QFrame::NoFrame);
    view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    view->verticalHeader()->hide();
    view->horizontalHeader()->setHighlightSections(false);
    view->horizontalHeader()->setResizeContentsPrecision(measuredSessions);
    // What is looked for most can be seen in a narrow window, and texts stand before figures.
    QHeaderView& header = *view->horizontalHeader();
    header.moveSection(sectionOf(SessionColumn::lastActivity),
                       sectionOf(SessionColumn::project) + 1);
    header.moveSection(header.visualIndex(sectionOf(SessionColumn::cost)),
                       header.visualIndex(sectionOf(SessionColumn::model)) + 1);
    view->setSortingEnabled(true);
    view->sortByColumn(sectionOf(SessionColumn::lastActivity), Qt::DescendingOrder);
    connect(view, &QTableView::doubleClicked, this, &SessionsPage::open);
    connect(view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { showMessage({}); });
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view, &QWidget::customContextMenuRequested, this, &SessionsPage::openSortMenu);
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
    fitRows();
}

QString SessionsPage::name() const {
    return shown("Sitzungen"_text);
}

bool SessionsPage::isWanted() const {
    return wantedColumns(monitor.settings()).any();
}

void SessionsPage::refresh(Date now) {
    if (now - toldAt >= messageTime) showMessage({});
    const bool hasOtherColumns = showWantedColumns();
    model.setRules({.basis = costDisplay(monitor.settings()).basis,
                    .calendar = monitor.calendar(),
                    .home = monitor.home()});
    const auto costs = monitor.allCosts();
    const UsageSources sources{.costs = *costs,
                               .listed = monitor.sessions(),
                               .archived = [this](const auto& id) { return archive.entry(id); }};
    model.setSessions(
        sessionUsages(sources, [this](const auto& id) { return monitor.figures({id}); }));
    const bool fitsFirst = !hasFitted && archive.hasListed() && model.rowCount() > 0;
    if (fitsFirst || (hasFitted && hasOtherColumns)) {
        hasFitted = true;
        fitColumns();
    }
    showSum();
}

bool SessionsPage::showWantedColumns() {
    const UsageColumns columns = wantedColumns(monitor.settings());
    bool isOther = false;
    for (const SessionColumn column : allSessionColumns) {
        const bool isHidden = !fleetwise::isWanted(column, columns);
        isOther |= isHidden != view->isColumnHidden(sectionOf(column));
        view->setColumnHidden(sectionOf(column), isHidden);
    }
    return isOther;
}

void SessionsPage::showSum() {
    exportButton->setEnabled(filter.rowCount() > 0);
    if (filter.rowCount() == 0) {
        summary->setText(
            model.rowCount() > 0
                ? shown("Keine Sitzung passt zur Suche."_text)
                : shown(
                      "Noch hat keine Sitzung etwas verbraucht. Sobald ein Agent arbeitet, steht sie hier."_text));
        return;
    }
    std::vector<std::string> ids;
    for (int row = 0; row < filter.rowCount(); ++row)
        ids.push_back(filter.session(row).id);
    // Together, since what forks copied and what Codex sessions started stands in several rows.
    const CostFigures figures = monitor.figures(ids);
    const UsageColumns columns = wantedColumns(monitor.settings());
    QStringList parts{shownCount(filter.rowCount(), "%d Sitzung"_text, "%d Sitzungen"_text)};
    if (columns.tokens) parts << shown("%@ Tokens"_text, shortNumber(figures.tally.all()));
    if (columns.money) parts << qtText(costText(figures.money(model.rules().basis)));
    parts.removeAll(QString());
    summary->setText(parts.join(QStringLiteral(" · ")));
}

void SessionsPage::open(const QModelIndex& index) {
    if (!index.isValid()) return;
    const std::string id = filter.session(index.row()).id;
    QString problem;
    if (monitor.session(id) != nullptr) {
        monitor.activate(id);
        problem = qtText(monitor.notice(id).value_or(""));
    } else if (const ArchiveEntry* entry = archive.entry(id)) {
        const auto resumed = monitor.resumePast(entry->asSession());
        if (!resumed) problem = qtText(resumed.error());
    } else {
        problem = shown("Von dieser Sitzung ist nur der Verbrauch bekannt."_text);
    }
    toldAt = monitor.clock();
    showMessage(problem);
}

void SessionsPage::showMessage(const QString& text) {
    message->setText(text);
    message->setVisible(!text.isEmpty());
}

/// What the headings do by the mouse.
void SessionsPage::openSortMenu(const QPoint& place) {
    auto* menu = new QMenu(view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addSection(shown("Sortieren nach"_text));
    auto* group = new QActionGroup(menu);
    const QHeaderView& header = *view->horizontalHeader();
    for (int visual = 0; visual < header.count(); ++visual) {
        const int section = header.logicalIndex(visual);
        if (view->isColumnHidden(section)) continue;
        QAction* action = group->addAction(
            filter.headerData(section, Qt::Horizontal, Qt::DisplayRole).toString());
        action->setCheckable(true);
        action->setChecked(header.sortIndicatorSection() == section);
        connect(action, &QAction::triggered, this, [this, section] {
            const auto order = filter.headerData(section, Qt::Horizontal, Qt::InitialSortOrderRole);
            view->sortByColumn(section, order.value<Qt::SortOrder>());
        });
        menu->addAction(action);
    }
    menu->popup(view->viewport()->mapToGlobal(place));
}

FigureTable SessionsPage::table() const {
    std::vector<SessionUsage> sessions;
    for (int row = 0; row < filter.rowCount(); ++row)
        sessions.push_back(filter.session(row));
    return sessionUsageTable(sessions, wantedColumns(monitor.settings()), model.rules());
}

void SessionsPage::fitRows() {
    const int rowHeight = fontMetrics().height() + Metrics::gap;
    view->verticalHeader()->setDefaultSectionSize(rowHeight);
    view->setMinimumHeight((leastVisibleRows + 1) * rowHeight);
}

void SessionsPage::fitColumns() {
    QHeaderView& header = *view->horizontalHeader();
    const int widest = mostTextCharacters * fontMetrics().averageCharWidth();
    for (const SessionColumn column : allSessionColumns) {
        const int section = sectionOf(column);
        if (column == SessionColumn::name || view->isColumnHidden(section)) continue;
        view->resizeColumnToContents(section);
        const int wanted = header.sectionSize(section) + Metrics::gap;
        header.resizeSection(section, isFigure(column) ? wanted : std::min(wanted, widest));
    }
    stretchNames();
}

void SessionsPage::stretchNames() {
    QHeaderView& header = *view->horizontalHeader();
    const int section = sectionOf(SessionColumn::name);
    const int room = view->viewport()->width() - (header.length() - header.sectionSize(section));
    header.resizeSection(section,
                         std::max(leastNameCharacters * fontMetrics().averageCharWidth(), room));
}

void SessionsPage::changeEvent(QEvent* event) {
    UsagePage::changeEvent(event);
    if (event->type() != QEvent::FontChange) return;
    fitRows();
    fitColumns();
}

void SessionsPage::hideEvent(QHideEvent* event) {
    UsagePage::hideEvent(event);
    showMessage({});
}

bool SessionsPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == view->viewport() && event->type() == QEvent::Resize) stretchNames();
    if (event->type() != QEvent::KeyPress) return UsagePage::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool isEnter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (watched == view && isEnter) {
        open(view->currentIndex());
        return true;
    }
    if (watched == search && (isEnter || key == Qt::Key_Down) && filter.rowCount() > 0) {
        view->setFocus(Qt::OtherFocusReason);
        if (!view->currentIndex().isValid()) view->selectRow(0);
        return true;
    }
    if (watched == search && key == Qt::Key_Escape && !search->text().isEmpty()) {
        search->clear();
        return true;
    }
    return UsagePage::eventFilter(watched, event);
}

}  // namespace fleetwise
