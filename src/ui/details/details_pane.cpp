#include "ui/details/details_pane.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/details/selection_panel.h"
#include "ui/details/session_panel.h"

#include <QLabel>
#include <QPointer>
#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

namespace fleetwise {

namespace {

constexpr Seconds betweenReadings{1};
constexpr int usualPaneCharacters = 46;
constexpr int leastPaneCharacters = 30;

}  // namespace

DetailsPane::DetailsPane(FleetMonitor& givenMonitor, QWidget* parent)
    : QScrollArea(parent),
      monitor(givenMonitor),
      empty(new QLabel(shown("Wähle eine Sitzung, dann steht hier, was sie tut."_text))),
      session(new SessionPanel(monitor)),
      selection(new SelectionPanel(monitor)) {
    setAccessibleName(shown("Details"_text));
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    empty->setAlignment(Qt::AlignCenter);
    empty->setWordWrap(true);
    empty->setForegroundRole(QPalette::PlaceholderText);
    auto* contents = new QWidget;
    auto* column = new QVBoxLayout(contents);
    column->setContentsMargins(Metrics::groupGap, Metrics::margin, Metrics::groupGap,
                               Metrics::groupGap);
    for (QWidget* page : {static_cast<QWidget*>(empty), static_cast<QWidget*>(session),
                          static_cast<QWidget*>(selection)})
        column->addWidget(page);
    setWidget(contents);
    connect(session, &SessionPanel::menuWanted, this,
            [this](const QPoint& position) { emit menuWanted(ids.front(), position); });
    connect(session, &SessionPanel::goalWanted, this, &DetailsPane::goalWanted);
    follow();
    monitor.addObserver(*this);
}

DetailsPane::~DetailsPane() {
    monitor.removeObserver(*this);
}

QSize DetailsPane::sizeHint() const {
    return {fontMetrics().averageCharWidth() * usualPaneCharacters, 0};
}

QSize DetailsPane::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * leastPaneCharacters, 0};
}

DetailsPane::Sign DetailsPane::signOf(const Session& ofSession) {
    return {.state = ofSession.state,
            .lastActivityAt = ofSession.lastActivityAt,
            .tasks = ofSession.tasks,
            .subagents = ofSession.subagentCount};
}

void DetailsPane::setSessions(std::vector<std::string> newIds) {
    if (newIds == ids) return;
    ids = std::move(newIds);
    details = {};
    readSign.reset();
    isReading = false;
    verticalScrollBar()->setValue(0);
    follow();
}

void DetailsPane::showEvent(QShowEvent* event) {
    QScrollArea::showEvent(event);
    follow();
}

void DetailsPane::follow() {
    std::erase_if(ids, [this](const std::string& id) { return monitor.session(id) == nullptr; });
    empty->setVisible(ids.empty());
    session->setVisible(ids.size() == 1);
    selection->setVisible(ids.size() > 1);
    if (!isVisible()) return;
    if (ids.size() > 1) selection->setSessions(ids);
    if (ids.size() != 1) return;
    const Session& shownSession = *monitor.session(ids.front());
    followFiles(shownSession);
    showSession(shownSession);
}

void DetailsPane::followFiles(const Session& ofSession) {
    const Sign sign = signOf(ofSession);
    if (isReading || readSign == sign) return;
    if (readSign && monitor.clock() - readAt < betweenReadings) return;
    isReading = true;
    readSign = sign;
    readAt = monitor.clock();
    const QPointer<DetailsPane> alive(this);
    monitor.readDetails(ofSession.id, [alive, id = ofSession.id](const SessionDetails& read) {
        if (!alive || alive->ids.size() != 1 || alive->ids.front() != id) return;
        alive->isReading = false;
        alive->details = read;
        alive->follow();
    });
}

void DetailsPane::showSession(const Session& ofSession) {
    SessionDetails known = details;
    // What the list knows is there at once.
    if (!known.message && ofSession.stats) known.message = ofSession.stats->lastReply;
    session->setSession(ofSession, known);
}

}  // namespace fleetwise
