#include "ui/settings/release_dialog.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/settings/action_words.h"
#include "ui/settings/page_labels.h"
#include "ui/settings/state_icon.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int charactersWide = 64;
constexpr double largestDialogShare = 0.8;  ///< of the screen's height

}  // namespace

ReleaseDialog::ReleaseDialog(const StateAction& action, const StateAction::Plan& plan,
                             QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(shown("Aktion freigeben"_text));
    QWidget* facts = makeFacts(action, plan);
    QWidget* buttons = makeButtons();
    auto* area = new QScrollArea;
    area->setWidget(facts);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, Metrics::margin);
    layout->setSpacing(Metrics::margin);
    layout->addWidget(area, 1);
    layout->addWidget(buttons);
    const int width = fontMetrics().averageCharWidth() * charactersWide;
    const int height =
        facts->heightForWidth(width) + buttons->sizeHint().height() + 2 * Metrics::margin;
    const QSize available = screen()->availableSize();
    resize(std::min(width, available.width()),
           std::min(height, static_cast<int>(available.height() * largestDialogShare)));
}

QWidget* ReleaseDialog::makeFacts(const StateAction& action, const StateAction::Plan& plan) {
    auto* facts = new QWidget;
    auto* rows = new QVBoxLayout(facts);
    rows->setContentsMargins(Metrics::groupGap, Metrics::groupGap, Metrics::groupGap, 0);
    rows->setSpacing(Metrics::grid);
    const auto begin = [&](const QString& caption) {
        rows->addSpacing(Metrics::gap);
        rows->addWidget(makePageNote(caption));
    };
    QLabel* question = makePageText(shown("Darf Fleetwise dieses Programm starten?"_text));
    question->setFont(headingFont(font()));
    rows->addWidget(question);
    begin(shown("Jedes Mal, wenn eine Sitzung diesen Zustand erreicht"_text));
    auto* state = new QHBoxLayout;
    state->setSpacing(Metrics::gap);
    auto* glyph = new QLabel;
    glyph->setPixmap(
        stateIcon(action.state, *this).pixmap(QSize(Metrics::glyphSide, Metrics::glyphSide)));
    state->addWidget(glyph);
    state->addWidget(makePageText(qtText(label(action.state))), 1);
    rows->addLayout(state);
    begin(shown("Was gestartet wird"_text));
    for (const QString& line : planLines(plan))
        rows->addWidget(makePageText(line));
    begin(shown("Umgebung"_text));
    for (const QString& line : environmentLines(action.state))
        rows->addWidget(makePageText(line));
    rows->addSpacing(Metrics::gap);
    rows->addWidget(makePageNote(shown(
        "Das Programm läuft mit deinen Rechten und bekommt nur diese Variablen, auch keinen Suchpfad. Änderst du Befehl oder Zustand, gilt die Freigabe nicht mehr."_text)));
    rows->addStretch();
    return facts;
}

QWidget* ReleaseDialog::makeButtons() {
    auto* buttons = new QWidget;
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(Metrics::groupGap, 0, Metrics::groupGap, 0);
    row->setSpacing(Metrics::gap);
    row->addStretch();
    auto* refuse = new QPushButton(shown("Abbrechen"_text));
    auto* release = new QPushButton(shown("Freigeben"_text));
    release->setAutoDefault(false);
    refuse->setDefault(true);
    row->addWidget(refuse);
    row->addWidget(release);
    connect(refuse, &QPushButton::clicked, this, &QDialog::reject);
    connect(release, &QPushButton::clicked, this, &QDialog::accept);
    refuse->setFocus();
    return buttons;
}

}  // namespace fleetwise
