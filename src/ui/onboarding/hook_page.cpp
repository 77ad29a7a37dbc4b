#include "ui/onboarding/hook_page.h"

#include "ui/base/hook_text.h"
#include "ui/base/interface_text.h"
#include "ui/base/state_sign.h"
#include "ui/base/theme.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>

namespace fleetwise {

namespace {

/// With the home folder as "~".
QString settingsFolder(const std::string& home) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                           QStringLiteral("/Fleetwise");
    const QString above = qtText(home) + u'/';
    return folder.startsWith(above) ? QStringLiteral("~/") + folder.mid(above.size()) : folder;
}

}  // namespace

HookPage::HookPage(FleetMonitor& givenMonitor, QWidget* parent)
    : OnboardingPage(shown("Was Fleetwise schreibt"_text), parent),
      monitor(givenMonitor),
      explanation(makeOnboardingText(hookExplanation(monitor.hookPlaces()))),
      installButton(new QPushButton(shown("Einrichten"_text))),
      sign(new StateSign(SessionState::done)),
      outcome(makeOnboardingText({})) {
    QGridLayout& table = *addTable();
    addTableRow(table, QStringLiteral("~/.claude/fleetwise"),
                shown("was Fleetwise sich merkt: Zustände, Kosten und Wartezeiten"_text));
    addTableRow(table, settingsFolder(monitor.home()), shown("deine Einstellungen"_text));
    addGap();
    QLabel* caption = addText(shown("Nur wenn du es willst: der Hook"_text));
    caption->setFont(headingFont(caption->font()));
    addText(shown(
        "Ohne den Hook erfährt Fleetwise nur alle paar Sekunden, was Claude Code tut, und nicht, was es dich fragt."_text));
    explanation->setForegroundRole(QPalette::PlaceholderText);
    explanation->setTextInteractionFlags(Qt::TextSelectableByMouse);
    add(explanation);
    add(makeOffer());
    connect(installButton, &QPushButton::clicked, this, [this] { monitor.installHook(); });
    monitor.addObserver(*this);
    hookChanged();
}

HookPage::~HookPage() {
    monitor.removeObserver(*this);
}

QWidget* HookPage::makeOffer() {
    auto* offer = new QWidget;
    auto* row = new QHBoxLayout(offer);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Metrics::gap);
    installButton->setAutoDefault(false);
    installButton->setAccessibleName(shown("Hook einrichten …"_text));
    row->addWidget(installButton);
    row->addWidget(sign);
    row->addWidget(outcome, 1);
    return offer;
}

void HookPage::hookChanged() {
    const bool isInstalled = monitor.hookState() == FleetMonitor::HookState::installed;
    const std::string& problem = monitor.hookProblem();
    explanation->setVisible(!isInstalled);
    installButton->setVisible(!isInstalled);
    const bool isChanging = monitor.isHookChanging();
    installButton->setEnabled(monitor.hookState() == FleetMonitor::HookState::missing &&
                              !isChanging);
    sign->setState(isInstalled ? SessionState::done : SessionState::failed);
    sign->setVisible(isInstalled || (!problem.empty() && !isChanging));
    if (isInstalled) {
        outcome->setText(shown(
            "Der Hook ist eingerichtet. Neue Sitzungen melden sich von jetzt an sofort."_text));
    } else if (isChanging) {
        outcome->setText(shown("Wird eingerichtet …"_text));
    } else if (problem.empty()) {
        outcome->setText(shown("Das geht auch später, im Fenster und in den Einstellungen."_text));
    } else {
        outcome->setText(shown("Der Hook wurde nicht eingerichtet: %@"_text, problem));
    }
}

}  // namespace fleetwise
