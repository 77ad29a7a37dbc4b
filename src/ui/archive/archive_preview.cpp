#include "ui/archive/archive_preview.h"

#include "fleet/archive_entry.h"
#include "localisation/number_format.h"
#include "monitor/fleet_monitor.h"
#include "session/model_name.h"
#include "ui/base/elided_label.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStringList>
#include <QTextDocument>

namespace fleetwise {

namespace {

constexpr int promptLines = 3;

/// Text to read and copy from, that looks like a label.
QPlainTextEdit* makeReadOnlyText() {
    auto* text = new QPlainTextEdit;
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setFrameShape(QFrame::NoFrame);
    text->viewport()->setAutoFillBackground(false);
    text->document()->setDocumentMargin(0);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return text;
}

}  // namespace

ArchivePreview::ArchivePreview(FleetMonitor& givenMonitor)
    : monitor(givenMonitor),
      name(new ElidedLabel),
      prompt(makeReadOnlyText()),
      details(new QLabel),
      activate(new QPushButton) {
    prompt->setAccessibleName(shown("Auftrag"_text));
    prompt->setPlaceholderText(shown("Der Auftrag ist nicht bekannt."_text));
    QSizePolicy keepsRoom = prompt->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    prompt->setSizePolicy(keepsRoom);
    details->setTextFormat(Qt::PlainText);
    details->setWordWrap(true);
    details->setForegroundRole(QPalette::PlaceholderText);
    details->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    connect(activate, &QPushButton::clicked, this, &ArchivePreview::activated);
    layOut();
    adoptFont();
    setEntry(nullptr);
}

void ArchivePreview::layOut() {
    auto* top = new QHBoxLayout;
    top->setSpacing(Metrics::gap);
    top->addWidget(name, 1);
    top->addWidget(activate);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::gap);
    layout->setSpacing(Metrics::grid);
    layout->addLayout(top);
    layout->addWidget(prompt);
    layout->addWidget(details);
}

void ArchivePreview::adoptFont() {
    name->setFont(emphasisedFont(font()));
    details->setFont(smallFont(font()));
    prompt->setFixedHeight(promptLines * fontMetrics().lineSpacing() + Metrics::grid);
}

void ArchivePreview::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::FontChange) adoptFont();
}

void ArchivePreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(paletteOf(palette()).hairline);
    painter.drawLine(0, 0, width(), 0);
}

void ArchivePreview::setEntry(const ArchiveEntry* entry) {
    activate->setEnabled(entry != nullptr);
    prompt->setVisible(entry != nullptr);
    if (entry == nullptr) {
        name->setText(shown("Keine Sitzung ausgewählt"_text));
        details->clear();
        return;
    }
    const Session* listed = monitor.session(entry->id);
    const bool isLive = listed != nullptr && listed->isLive;
    activate->setText(isLive ? shown("Fenster nach vorn"_text) : shown("Fortsetzen"_text));
    name->setText(qtText(entry->displayName()));
    // What is selected in it stays so while nothing changes.
    const QString text = qtText(entry->prompt);
    if (prompt->toPlainText() != text) prompt->setPlainText(text);
    details->setText(facts(*entry));
}

QString ArchivePreview::facts(const ArchiveEntry& entry) const {
    QStringList parts{qtText(entry.asSession().displayPath(monitor.home())),
                      qtText(entry.agent.label())};
    const auto cost = monitor.cost(entry.id);
    const auto model = entry.model || !cost ? entry.model : cost->lastModel;
    if (model) parts << qtText(displayModelName(*model));
    const std::int64_t tokens = monitor.figures({entry.id}).tally.all();
    if (tokens > 0) parts << shown("%@ Tokens"_text, shortNumber(tokens));
    parts << qtText(entry.id);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

}  // namespace fleetwise
