#pragma once

#include "ui/settings/settings_page.h"
#include "ui/settings/settings_services.h"
#include "ui/settings/stored_actions.h"

#include <optional>
#include <vector>

class QVBoxLayout;

namespace fleetwise {

class ActionEditor;
class ActionLogModel;
class PlainTable;

/// The programs that run when a session enters a state, and what became of them.
class ActionsPage final : public SettingsPage {
    Q_OBJECT

public:
    /// All that is given outlives this.
    ActionsPage(FleetMonitor& monitor, const SettingsServices& services,
                StateAction::FileSystem fileSystem = StateAction::lookAtDisk,
                QWidget* parent = nullptr);

    QString name() const override;

private:
    QWidget* makeList();
    void addLog();
    ActionEditor* makeEditor();
    void showActions();
    void showLog();
    void addAction();
    void takeEdited(const StateAction& action);
    void askForRelease(const StateAction& action, const StateAction::Plan& plan);

    const ActionRunner& runner;
    const StateAction::FileSystem fileSystem;
    StoredActions stored;
    std::optional<StateAction> draft;    ///< a new one, not stored before it has a command
    std::vector<ActionEditor*> editors;  ///< in the order of the actions
    QVBoxLayout* list = nullptr;
    QLabel* emptyList = nullptr;
    ActionLogModel* logModel;
    PlainTable* log = nullptr;
    QLabel* emptyLog = nullptr;
};

}  // namespace fleetwise
