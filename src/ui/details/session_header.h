#pragma once

#include "fleet/session.h"

#include <QWidget>

class QPushButton;
class QToolButton;

namespace fleetwise {

class FleetMonitor;
class WrappedLabel;

/// What the session is and does, and what can be done with it.
class SessionHeader final : public QWidget {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit SessionHeader(FleetMonitor& monitor, QWidget* parent = nullptr);

    void setSession(const Session& session);

signals:
    /// The session's menu is to open there.
    void menuWanted(const QPoint& globalPosition);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void followFont();
    void showNotice(const Session& session);

    FleetMonitor& monitor;
    std::string sessionId;
    SessionState state = SessionState::unknown;
    WrappedLabel* name;
    WrappedLabel* stateLine;
    WrappedLabel* activity;
    WrappedLabel* facts;
    WrappedLabel* notice;
    QPushButton* action;
    QPushButton* menu;
};

}  // namespace fleetwise
