#include "ui/fleet/hook_banner.h"

#include "ui/base/hook_text.h"
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

}  // namespace

HookBanner::HookBanner(FleetMonitor& givenMonitor, QWidget* parent)
    : QFrame(parent),
      monitor(givenMonitor),
      text(new QLabel),
      proceedButton(new QPushButton),
      cancelButton(new QPushButton(shown("Abbrechen"_text))) {
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Metrics::margin, Metrics::gap, Metrics::margin, Metrics::gap);
    row->setSpacing(Metrics::gap);
    row->addWidget(text, 1);
    row->addWidget(cancelButton);
    row->addWidget(proceedButton);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase);
    connect(proceedButton, &QPushButton::clicked, this, &HookBanner::proceed);
    connect(cancelButton, &QPushButton::clicked, this, [this] { setStage(Stage::offer); });
    setStage(Stage::offer);
    monitor.addObserver(*this);
    hookChanged();
}

/// Beside the buttons the text would be a column of single words.
void HookBanner::resizeEvent(QResizeEvent* event) {
    constexpr int fewestCharacters = 60;
    const bool isNarrow = width() < fewestCharacters * fontMetrics().averageCharWidth();
    static_cast<QBoxLayout*>(layout())->setDirection(isNarrow ? QBoxLayout::TopToBottom
                                                              : QBoxLayout::LeftToRight);
    QFrame::resizeEvent(event);
}

HookBanner::~HookBanner() {
    monitor.removeObserver(*this);
}

void HookBanner::hookChanged() {
    if (monitor.isHookChanging()) {
        proceedButton->setEnabled(false);
    } else {
        setStage(Stage::offer);
    }
    setVisible(monitor.hookState() == FleetMonitor::HookState::missing);
}

void HookBanner::setStage(Stage next) {
    stage = next;
    const bool isOffer = stage == Stage::offer;
    text->setText(isOffer ? offer(monitor.hookProblem()) : hookExplanation(monitor.hookPlaces()));
    proceedButton->setText(isOffer ? shown("Hook einrichten …"_text) : shown("Einrichten"_text));
    proceedButton->setEnabled(!monitor.isHookChanging());
    cancelButton->setVisible(!isOffer);
}

void HookBanner::proceed() {
    if (stage == Stage::offer) {
        setStage(Stage::confirmation);
        return;
    }
    monitor.installHook();
}

}  // namespace fleetwise
