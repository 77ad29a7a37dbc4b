#include "ui/archive/archive_window.h"

#include "fleet/cost_texts.h"
#include "localisation/number_format.h"
#include "ui/archive/archive_model.h"
#include "ui/archive/archive_preview.h"
#include "ui/archive/archive_view.h"
#include "ui/base/chip_button.h"
#include "ui/base/cost_display.h"
#include "ui/base/elided_label.h"
#include "ui/base/interface_text.h"
#include "ui/base/search_field.h"
#include "ui/base/theme.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QStringList>

#include <chrono>
#include <utility>

namespace fleetwise {

namespace {

using namespace std::chrono_literals;

constexpr QSize firstSize(1040, 720);
constexpr double widestShare = 0.9;  ///< of the screen, for the first size
constexpr auto messageTime = 10s;
constexpr auto pauseInTyping = 150ms;
constexpr auto restBetweenListings = 10s;

}  // namespace

ArchiveWindow::ArchiveWindow(FleetMonitor& givenMonitor, ArchiveIndex& givenIndex)
    : monitor(givenMonitor),
      index(givenIndex),
      model(new ArchiveModel(monitor, index)),
      search(new SearchField),
      claude(new ChipButton(QStringLiteral("Claude Code"))),
      codex(new ChipButton(QStringLiteral("Codex"))),
      view(new ArchiveView(monitor, *model)),
      preview(new ArchivePreview(monitor)),
      empty(new QLabel),
      summary(new ElidedLabel),
      progress(new ElidedLabel) {
    model->setParent(view);
    model->setActive(false);
    setWindowTitle(shown("Vorige Sitzungen"_text));
    setObjectName(QStringLiteral("archive"));
    for (QTimer* timer : {&summing, &tellingEnds, &resting})
        timer->setSingleShot(true);
    summing.setInterval(pauseInTyping);
    tellingEnds.setInterval(messageTime);
    resting.setInterval(restBetweenListings);
    connect(&summing, &QTimer::timeout, this, &ArchiveWindow::showSummary);
    connect(&tellingEnds, &QTimer::timeout, this, &ArchiveWindow::showSummary);
    connect(&resting, &QTimer::timeout, this, [this] {
        if (std::exchange(isRefreshWanted, false)) refreshOnceInAWhile();
    });
    layOut();
    addShortcuts();
    settingsChanged();
    archiveChanged();
    restoreGeometryOnce();
    monitor.addObserver(*this);
    index.addObserver(*this);
}

ArchiveWindow::~ArchiveWindow() {
    if (isVisible()) hide();
    index.removeObserver(*this);
    monitor.removeObserver(*this);
}

void ArchiveWindow::layOut() {
    search->setPlaceholderText(shown("Suchen"_text));
    search->setAccessibleName(shown("Vorige Sitzungen suchen"_text));
    search->setToolTip(shown("Titel, Auftrag, Pfad, Datum oder Sitzungs-ID (Strg+F)"_text));
    search->installEventFilter(this);
    empty->setAlignment(Qt::AlignCenter);
    empty->setWordWrap(true);
    empty->setMargin(2 * Metrics::groupGap);
    empty->setAutoFillBackground(true);
    empty->setBackgroundRole(QPalette::Base);
    progress->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (QLabel* label : {summary, progress})
        label->setForegroundRole(QPalette::PlaceholderText);

    auto* header = new QHBoxLayout;
    header->setContentsMargins(Metrics::margin, Metrics::gap, Metrics::margin, Metrics::gap);
    header->setSpacing(Metrics::gap);
    header->addWidget(search, 1);
    header->addWidget(claude);
    header->addWidget(codex);
    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(Metrics::margin, Metrics::grid, Metrics::margin, Metrics::grid);
    foot->setSpacing(Metrics::groupGap);
    foot->addWidget(summary, 1);
    foot->addWidget(progress, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(view, 1);
    layout->addWidget(empty, 1);
    layout->addWidget(preview);
    layout->addLayout(foot);

    connect(search, &QLineEdit::textChanged, model, &ArchiveModel::setSearch);
    connect(claude, &QToolButton::toggled, this, &ArchiveWindow::chooseAgents);
    connect(codex, &QToolButton::toggled, this, &ArchiveWindow::chooseAgents);
    connect(model, &ArchiveModel::updated, this, &ArchiveWindow::listChanged);
    connect(view, &ArchiveView::currentEntryChanged, this, &ArchiveWindow::showPreview);
    connect(view, &ArchiveView::told, this, &ArchiveWindow::tell);
    connect(preview, &ArchivePreview::activated, view, &ArchiveView::activateCurrent);
}

void ArchiveWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence::Close, [this] { close(); });
    add(QKeySequence::Refresh, [this] { index.refresh(); });
    add(QKeySequence::Find, [this] {
        search->setFocus(Qt::ShortcutFocusReason);
        search->selectAll();
    });
}

bool ArchiveWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape && !search->text().isEmpty()) {
            search->clear();
            return true;
        }
        if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
            view->setFocus(Qt::ShortcutFocusReason);
            view->selectSomething();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ArchiveWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) close();
    QWidget::keyPressEvent(event);
}

void ArchiveWindow::chooseAgents() {
    const bool isOne = claude->isChecked() != codex->isChecked();
    const auto one =
        claude->isChecked() ? ArchiveModel::Agents::claude : ArchiveModel::Agents::codex;
    model->setAgents(isOne ? one : ArchiveModel::Agents::all);
}

void ArchiveWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    model->setActive(canBeSeen());
    listChanged();
    refreshOnceInAWhile();
}

void ArchiveWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange) return;
    model->setActive(canBeSeen());
    if (!canBeSeen()) return;
    showPreview();
    refreshOnceInAWhile();
}

void ArchiveWindow::hideEvent(QHideEvent* event) {
    model->setActive(false);
    monitor.store(Settings::archiveGeometry, saveGeometry().toBase64().toStdString());
    QWidget::hideEvent(event);
}

void ArchiveWindow::fleetChanged() {
    if (canBeSeen()) refreshOnceInAWhile();
    showPreview();
}

void ArchiveWindow::refreshOnceInAWhile() {
    if (resting.isActive()) {
        isRefreshWanted = true;
    } else if (canBeSeen()) {
        index.refresh();
        resting.start();
    }
}

void ArchiveWindow::archiveChanged() {
    const auto reading = index.progress();
    progress->setVisible(reading.has_value());
    if (reading) {
        progress->setText(shown("Titel werden gelesen: %@ von %@"_text,
                                groupedNumber(static_cast<std::int64_t>(reading->read)),
                                groupedNumber(static_cast<std::int64_t>(reading->all))));
    }
}

void ArchiveWindow::costsChanged() {
    priced.reset();
    sumSoon();
}

void ArchiveWindow::settingsChanged() {
    view->setShowsCosts(costDisplay(monitor.settings()).extent == CostDisplay::Extent::sessions);
    costsChanged();
}

void ArchiveWindow::listChanged() {
    const bool isEmpty = model->rowCount() == 0;
    if (isEmpty && view->hasFocus()) search->setFocus();
    view->setVisible(!isEmpty);
    empty->setVisible(isEmpty);
    if (isEmpty) empty->setText(emptyText());
    view->selectSomething();
    showPreview();
    sumSoon();
}

void ArchiveWindow::showPreview() {
    if (!canBeSeen()) return;
    preview->setVisible(index.hasListed() && !index.entries().empty());
    preview->setEntry(view->currentEntry());
}

void ArchiveWindow::sumSoon() {
    if (canBeSeen()) summing.start();
}

void ArchiveWindow::showSummary() {
    if (tellingEnds.isActive()) return;
    const ArchiveModel::Totals totals = model->totals();
    if (totals.sessions == 0) {
        summary->clear();
        return;
    }
    QStringList parts{shownCount(static_cast<std::int64_t>(totals.sessions), "%d Sitzung"_text,
                                 "%d Sitzungen"_text),
                      qtText(byteCountText(totals.bytes))};
    const CostDisplay display = costDisplay(monitor.settings());
    if (display.extent != CostDisplay::Extent::nothing) {
        parts << costOfAll();
    }
    parts.removeAll(QString());
    summary->setText(parts.join(QStringLiteral(" · ")));
}

const QString& ArchiveWindow::costOfAll() {
    std::vector<std::string> ids = model->ids();
    if (!priced || ids != pricedIds) {
        const MoneyBasis basis = costDisplay(monitor.settings()).basis;
        priced = qtText(costText(monitor.figures(ids).money(basis)));
        pricedIds = std::move(ids);
    }
    return *priced;
}

void ArchiveWindow::tell(const QString& message) {
    summary->setText(message);
    tellingEnds.start();
}

QString ArchiveWindow::emptyText() const {
    if (!index.hasListed()) return shown("Die Sitzungen werden gesucht …"_text);
    if (model->isFiltered()) return shown("Keine Sitzung passt zu Suche und Filtern."_text);
    return shown(
        "Noch keine vorigen Sitzungen. Was Claude Code und Codex hinterlassen, erscheint hier."_text);
}

void ArchiveWindow::restoreGeometryOnce() {
    const std::string stored = monitor.settings().get(Settings::archiveGeometry);
    if (restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(stored)))) return;
    resize(firstSize.boundedTo(screen()->availableSize() * widestShare));
}

void ArchiveWindow::bringUp() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    search->setFocus(Qt::OtherFocusReason);
    search->selectAll();
}

}  // namespace fleetwise
