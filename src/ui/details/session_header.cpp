#include "ui/details/session_header.h"

#include "monitor/fleet_monitor.h"
#include "session/permission_mode.h"
#include "ui/base/interface_text.h"
#include "ui/base/state_glyph.h"
#include "ui/base/theme.h"
#include "ui/details/detail_rows.h"
#include "ui/details/wrapped_label.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>
#include <QPushButton>

namespace fleetwise {

namespace {

constexpr int nameLines = 3;
constexpr int activityLines = 3;

/// A session at rest has nothing to say but its last message, which has a place of its own.
bool tellsActivity(SessionState state) {
    return demandsAttention(state) ? state != SessionState::done
                                   : isBusy(state) || state == SessionState::scheduled;
}

}  // namespace

SessionHeader::SessionHeader(FleetMonitor& givenMonitor, QWidget* parent)
    : QWidget(parent),
      monitor(givenMonitor),
      name(new WrappedLabel),
      stateLine(new WrappedLabel),
      activity(new WrappedLabel),
      facts(new WrappedLabel),
      notice(new WrappedLabel),
      action(new QPushButton),
      menu(new QPushButton(shown("Menü"_text))) {
    name->setMostLines(nameLines);
    activity->setMostLines(activityLines);
    for (QLabel* label : {activity, facts})
        label->setForegroundRole(QPalette::PlaceholderText);
    connect(action, &QPushButton::clicked, this, [this] { monitor.activate(sessionId); });
    connect(menu, &QPushButton::clicked, this,
            [this] { emit menuWanted(menu->mapToGlobal(menu->rect().bottomLeft())); });
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, Metrics::grid, 0, 0);
    buttons->setSpacing(Metrics::gap);
    for (QPushButton* button : {action, menu}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    auto* titles = new QVBoxLayout;
    titles->setContentsMargins(Metrics::glyphSide + Metrics::gap, 0, 0, 0);
    titles->setSpacing(Metrics::grid);
    for (WrappedLabel* label : {name, stateLine})
        titles->addWidget(label);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(Metrics::grid);
    rows->addLayout(titles);
    for (WrappedLabel* label : {activity, facts, notice})
        rows->addWidget(label);
    rows->addLayout(buttons);
    followFont();
}

void SessionHeader::setSession(const Session& session) {
    sessionId = session.id;
    if (std::exchange(state, session.state) != session.state) update();
    name->setText(qtText(session.displayName()));
    stateLine->setText(stateText(session, monitor.clock()));
    const std::string told = session.detail(monitor.clock(), monitor.calendar());
    activity->setText(tellsActivity(session.state) ? qtText(told) : QString());
    activity->setVisible(!activity->text().isEmpty());
    facts->setText(sessionFacts(monitor, session));
    facts->setToolTip(
        qtText(PermissionMode::explanation(session.permissionMode).value_or(std::string())));
    action->setText(session.isLive ? shown("Fenster nach vorn"_text) : shown("Fortsetzen"_text));
    showNotice(session);
}

void SessionHeader::showNotice(const Session& session) {
    const auto told = monitor.notice(session.id);
    notice->setText(qtText(told.value_or(std::string())));
    notice->setVisible(told.has_value());
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, paletteOf(colours).warning);
    notice->setPalette(colours);
}

void SessionHeader::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics metrics(headingFont(font()));
    const QRectF area(0, (metrics.lineSpacing() - Metrics::glyphSide) / 2.0, Metrics::glyphSide,
                      Metrics::glyphSide);
    paintStateGlyph(painter, area, state, stateColour(state, appearanceOf(palette())));
}

void SessionHeader::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) followFont();
}

void SessionHeader::followFont() {
    name->setFont(headingFont(font()));
    facts->setFont(smallFont(font()));
}

}  // namespace fleetwise
