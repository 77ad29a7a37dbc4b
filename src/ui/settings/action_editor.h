#pragma once

#include "reactions/state_action.h"

#include <QTimer>
#include <QWidget>
#include <tl/expected.hpp>

#include <string>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace fleetwise {

/// Edits one state action: when it runs, the command, what that starts in words, and whether it is
/// released. It only tells what the user wants; setAction shows what came of it.
class ActionEditor final : public QWidget {
    Q_OBJECT

public:
    /// `fileSystem` tells of the machine's files, and is asked only when a command changes or the
    /// editor comes into view.
    explicit ActionEditor(StateAction::FileSystem fileSystem, QWidget* parent = nullptr);
    ~ActionEditor() override;

    /// A command that is being typed stays.
    void setAction(const StateAction& action);
    const StateAction& action() const { return shownAction; }

    /// Tells of a command that was typed and not told yet.
    void commit();
    void focusCommand();

signals:
    /// State and command as the user wants them; anything that differs is not released.
    void edited(const fleetwise::StateAction& action);
    /// The user wants to look at what would run, in order to release it.
    void releaseWanted(const fleetwise::StateAction& action,
                       const fleetwise::StateAction::Plan& plan);
    void releaseTakenBack(const std::string& id);
    void removalWanted(const std::string& id);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    using Plan = tl::expected<StateAction::Plan, StateActionError>;

    void layOut();
    void change(const StateAction& wanted);
    Plan planOnceReleased() const;
    void fillStates();
    void showPlan();
    void chooseRelease();

    StateAction::FileSystem fileSystem;
    StateAction shownAction;
    QComboBox* states;
    QLineEdit* command;
    QLabel* planLabel;
    QLabel* release;
    QPushButton* releaseButton;
    QPushButton* removeButton;
    QTimer typingPause;
};

}  // namespace fleetwise
