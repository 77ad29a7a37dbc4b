#pragma once

#include "session/session_state.h"

#include <QWidget>

namespace fleetwise {

/// The sign of a state as the list draws it, beside a text that says what it means.
class StateSign final : public QWidget {
    Q_OBJECT

public:
    explicit StateSign(SessionState state, QWidget* parent = nullptr);

    void setState(SessionState state);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SessionState state;
};

}  // namespace fleetwise
