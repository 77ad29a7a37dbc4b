#include "ui/fleet/hook_banner.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace fleetwise {

namespace {

QString offer(const std::string& problem) {
    const QString what = shown(
        "Ohne den Hook erfährt Fleetwise nur alle paar Sekunden, was Claude Code tut, und nicht, was es dich fragt."_text);
    if (problem.empty()) return what;
    return shown("Der Hook wurde nicht eingerichtet: %@"_text, problem) + u'\n' + what;
}

QString explanation(const HookInstaller::Places& places) {
    return shown(
        "Geschrieben wird: das Hook-Programm nach %@ und je ein Eintrag für %d Ereignisse in %@. Die alte Datei wird vorher nach %@ gesichert. »fleetwise --uninstall-hooks« nimmt alles wieder heraus."_text,
        places.installedHook, HookInstaller::events.size(), places.settingsFile, places.stateDir);
}

}  // namespace

HookBanner::HookBanner(FleetMonitor& givenMonitor, QWidget* parent)
    : QFrame(parent),
      monitor(givenMonitor),
      text(new QLabel),
      proceedButton(new QPushButton),
      cancelButton(new QPushButton(shown("Abbrechen"_text))) {
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::gap, Metrics::margin, Metrics::gap);
    layout->setSpacing(Metrics::gap);
    layout->addWidget(text, 1);
    layout->addWidget(cancelButton);
    layout->addWidget(proceedButton);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase);
    connect(proceedButton, &QPushButton::clicked, this, &HookBanner::proceed);
    connect(cancelButton, &QPushButton::clicked, this, [this] { setStage(Stage::offer); });
    setStage(Stage::offer);
    monitor.addObserver(*this);
    hookChanged();
}

HookBanner::~HookBanner() {
    monitor.removeObserver(*this);
}

void HookBanner::hookChanged() {
    setStage(Stage::offer);
    setVisible(monitor.hookState() == FleetMonitor::HookState::missing);
}

void HookBanner::setStage(Stage next) {
    stage = next;
    const bool isOffer = stage == Stage::offer;
    text->setText(isOffer ? offer(monitor.hookProblem()) : explanation(monitor.hookPlaces()));
    proceedButton->setText(isOffer ? shown("Hook einrichten …"_text) : shown("Einrichten"_text));
    proceedButton->setEnabled(true);
    cancelButton->setVisible(!isOffer);
}

void HookBanner::proceed() {
    if (stage == Stage::offer) {
        setStage(Stage::confirmation);
        return;
    }
    proceedButton->setEnabled(false);
    monitor.installHook();
}

}  // namespace fleetwise
