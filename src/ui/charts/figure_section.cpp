#include "ui/charts/figure_section.h"

#include "ui/base/chip_button.h"
#include "ui/base/elided_label.h"
#include "ui/base/figure_table_model.h"
#include "ui/base/flow_layout.h"
#include "ui/base/interface_text.h"
#include "ui/base/table_export.h"
#include "ui/base/theme.h"
#include "ui/charts/chart_widget.h"

#include <QBoxLayout>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QTimer>

#include <utility>

namespace fleetwise {

namespace {

constexpr int visibleRows = 10;
constexpr int measuredRows = 50;  ///< for the width of the columns

QTableView* makeView(FigureTableModel* model, const QString& name) {
    auto* view = new QTableView;
    view->setModel(model);
    view->setAccessibleName(name);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setAlternatingRowColors(true);
    view->setShowGrid(false);
    view->setTabKeyNavigation(false);
    view->setFrameShape(QFrame::NoFrame);
    view->verticalHeader()->hide();
    view->horizontalHeader()->setHighlightSections(false);
    view->horizontalHeader()->setResizeContentsPrecision(measuredRows);
    view->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    return view;
}

/// Lines end between the parts, or after a comma.
QString brokenBetweenParts(QString text) {
    for (qsizetype place = 1; place + 1 < text.size(); ++place) {
        const bool mayEnd = text[place - 1] == u'·' || text[place - 1] == u',';
        if (text[place] == u' ' && !mayEnd) text[place] = QChar::Nbsp;
    }
    return text;
}

}  // namespace

FigureSection::FigureSection(const QString& heading, ChartWidget* givenChart, QWidget* parent)
    : QWidget(parent),
      chart(givenChart),
      controls(new FlowLayout(Qt::AlignRight)),
      headingLabel(new QLabel(heading)),
      summary(new QLabel),
      hintLabel(new QLabel),
      readout(new ElidedLabel),
      chartLegend(new ChartLegend),
      model(new FigureTableModel(this)),
      exportButton(new ChipButton(shown("CSV …"_text))) {
    view = makeView(model, heading);
    exportButton->setCheckable(false);
    exportButton->setToolTip(shown("Die Werte als CSV-Datei speichern"_text));
    exportButton->setAccessibleName(shown("Als CSV speichern"_text) + QStringLiteral(": ") +
                                    heading);
    connect(exportButton, &QToolButton::clicked, this, [this] {
        fillTable();
        offerExport(model->table(), window());
    });
    connect(chart, &ChartWidget::markChanged, readout, &QLabel::setText);
    view->installEventFilter(this);
    layOut(heading);
    fitRows();
    showParts();
}

void FigureSection::layOut(const QString& heading) {
    setAccessibleName(heading);
    headingLabel->setFont(headingFont(font()));
    for (QLabel* label : {summary, hintLabel}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    hintLabel->setForegroundRole(QPalette::PlaceholderText);
    readout->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    readout->setForegroundRole(QPalette::PlaceholderText);
    auto* header = new QHBoxLayout;
    header->setSpacing(Metrics::gap);
    header->addWidget(headingLabel, 0, Qt::AlignTop);
    header->addLayout(controls, 1);
    controls->addWidget(exportButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Metrics::grid);
    layout->addLayout(header);
    for (QWidget* widget : {static_cast<QWidget*>(summary), static_cast<QWidget*>(hintLabel),
                            static_cast<QWidget*>(readout), static_cast<QWidget*>(chart),
                            static_cast<QWidget*>(chartLegend), static_cast<QWidget*>(view)})
        layout->addWidget(widget);
}

void FigureSection::addControl(QWidget* control) {
    controls->insertWidget(controls->count() - 1, control);
    setTabOrder(control, exportButton);
    setTabOrder(exportButton, chart);
    setTabOrder(chart, view);
}

void FigureSection::setSummary(const QString& text) {
    summary->setText(brokenBetweenParts(text));
    showParts();
}

void FigureSection::setStale(bool isStale) {
    summary->setForegroundRole(isStale ? QPalette::PlaceholderText : QPalette::WindowText);
}

void FigureSection::setLegend(std::vector<ChartLegend::Entry> entries, bool hasRest) {
    hasLegend = !entries.empty();
    chartLegend->setEntries(std::move(entries), hasRest);
    showParts();
}

void FigureSection::setTable(std::function<FigureTable()> makeTable, Reading newReading) {
    reading = newReading;
    newTable = std::move(makeTable);
    if (showsTable) fillTable();
}

void FigureSection::fillTable() {
    const auto makeTable = std::exchange(newTable, {});
    if (!makeTable) return;
    const bool wasEmpty = model->rowCount() == 0;
    model->setTable(makeTable());
    if (wasEmpty) scroll();
}

void FigureSection::scroll() {
    if (reading == Reading::fromEnd) {
        view->scrollToBottom();
    } else {
        view->scrollToTop();
    }
}

void FigureSection::setHint(const QString& hint) {
    hintLabel->setText(hint);
    showParts();
}

void FigureSection::setShowsTable(bool newShowsTable) {
    if (newShowsTable == showsTable) return;
    showsTable = newShowsTable;
    if (showsTable) fillTable();
    showParts();
}

bool FigureSection::eventFilter(QObject* watched, QEvent* event) {
    // Only once it has its size can it be scrolled.
    if (watched == view && event->type() == QEvent::Show) {
        QTimer::singleShot(0, this, &FigureSection::scroll);
    }
    return QWidget::eventFilter(watched, event);
}

void FigureSection::showParts() {
    const bool isEmpty = !hintLabel->text().isEmpty();
    summary->setVisible(!summary->text().isEmpty());
    hintLabel->setVisible(isEmpty);
    exportButton->setEnabled(!isEmpty);
    view->setVisible(!isEmpty && showsTable);
    for (QWidget* widget : {static_cast<QWidget*>(readout), static_cast<QWidget*>(chart)})
        widget->setVisible(!isEmpty && !showsTable);
    chartLegend->setVisible(!isEmpty && !showsTable && hasLegend);
}

void FigureSection::fitRows() {
    // An empty line keeps its height, so that nothing jumps when the marker comes.
    readout->setMinimumHeight(fontMetrics().height());
    const int rowHeight = fontMetrics().height() + Metrics::gap;
    view->verticalHeader()->setDefaultSectionSize(rowHeight);
    view->setMinimumHeight((visibleRows + 1) * rowHeight);
}

void FigureSection::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::FontChange) return;
    headingLabel->setFont(headingFont(font()));
    fitRows();
}

}  // namespace fleetwise
