#pragma once

#include "reactions/state_action.h"

#include <QDialog>
#include <QStringList>

namespace fleetwise {

/// Asks whether a state action may run: says exactly what will be started, when, and with which
/// environment. Accepted means yes; the safe answer is the default.
class ReleaseDialog final : public QDialog {
    Q_OBJECT

public:
    /// `plan` is that of the action as it would be once released.
    ReleaseDialog(const StateAction& action, const StateAction::Plan& plan,
                  QWidget* parent = nullptr);

private:
    QWidget* makeFacts(const StateAction& action, const StateAction::Plan& plan);
    QWidget* makeButtons();
};

}  // namespace fleetwise
