#include "ui/onboarding/tour_page.h"

#include "ui/base/interface_text.h"
#include "ui/base/state_sign.h"
#include "ui/base/theme.h"
#include "ui/onboarding/example_row.h"
#include "ui/onboarding/onboarding_drawings.h"

#include <QGridLayout>
#include <QLabel>

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

/// Those that a row usually has, in columns that are read from the top down.
constexpr std::array tourStates{
    SessionState::decision,   SessionState::waiting, SessionState::failed,
    SessionState::done,       SessionState::working, SessionState::waitingForSubagents,
    SessionState::compacting, SessionState::idle,    SessionState::scheduled,
    SessionState::dormant,
};
constexpr int tourRows = 4;

QWidget* makeSigns() {
    auto* signs = new QWidget;
    auto* grid = new QGridLayout(signs);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(Metrics::gap);
    grid->setVerticalSpacing(Metrics::grid);
    int index = 0;
    for (const SessionState state : tourStates) {
        const int row = index % tourRows;
        const int column = 2 * (index / tourRows);
        grid->addWidget(new StateSign(state), row, column);
        grid->addWidget(makeOnboardingText(qtText(label(state))), row, column + 1);
        ++index;
    }
    for (int column = 1; column < grid->columnCount(); column += 2)
        grid->setColumnStretch(column, 1);
    return signs;
}

/// What runs, by state: "Arbeitet 2 · Bereit 1"; empty where nothing does.
QStringList runningStates(const std::vector<Session>& sessions) {
    QStringList texts;
    for (const SessionState state : allSessionStates) {
        const auto count = std::ranges::count_if(sessions, [&](const Session& session) {
            return session.isLive && session.state == state;
        });
        if (count > 0) texts << qtText(shortLabel(state)) + u' ' + QString::number(count);
    }
    return texts;
}

}  // namespace

TourPage::TourPage(FleetMonitor& givenMonitor, QWidget* parent)
    : OnboardingPage(shown("Was du siehst"_text), parent), monitor(givenMonitor) {
    addBeside(
        new ExampleMark,
        shown(
            "Das Zeichen in der Leiste zählt, wer arbeitet; die Ringe sind dein Kontingent für fünf Stunden und sieben Tage. Ein Punkt heißt: Jemand wartet auf dich. Ein Klick öffnet die Übersicht."_text));
    addText(shown(
        "Jede Sitzung hat eine Zeile. Enter holt ihr Fenster nach vorn oder setzt sie fort."_text));
    add(new ExampleRow);
    addText(shown("Was die Sitzung tut, sagt ihr Zeichen:"_text));
    add(makeSigns());
    addGap();
    running = addText({});
    running->setFont(emphasisedFont(running->font()));
    monitor.addObserver(*this);
    fleetChanged();
}

TourPage::~TourPage() {
    monitor.removeObserver(*this);
}

void TourPage::fleetChanged() {
    const QStringList states = runningStates(monitor.sessions());
    if (!states.isEmpty()) {
        running->setText(
            shown("Gerade läuft: %@"_text, states.join(QString::fromUtf8(" · ")).toStdString()));
    } else if (monitor.hasCollected()) {
        running->setText(shown(
            "Noch keine Sitzung. Starte Claude Code oder Codex in einem Terminal, dann erscheint sie hier."_text));
    } else {
        running->setText(shown("Die Sitzungen werden gesucht …"_text));
    }
}

}  // namespace fleetwise
