#pragma once

#include "ui/settings/settings_page.h"
#include "ui/settings/settings_services.h"

#include <optional>
#include <tuple>

class QVBoxLayout;

namespace fleetwise {

/// The hook program: whether it is set up, where it stands, and setting it up or taking it out
/// again after a second yes that says what is written where.
class HooksPage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both outlive this.
    HooksPage(FleetMonitor& monitor, const SettingsServices& services, QWidget* parent = nullptr);

    QString name() const override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    enum class Change { install, remove };

    void addState();
    void addConfirmation();
    void addPlaces();
    void showState();
    void showBackups();
    void ask(std::optional<Change> change);
    void proceed();

    const SettingsServices& services;
    QLabel* state = nullptr;
    QLabel* stateNote = nullptr;
    QLabel* problem = nullptr;
    QWidget* offers = nullptr;
    QPushButton* installButton = nullptr;
    QPushButton* removeButton = nullptr;
    QWidget* confirmation = nullptr;
    QLabel* consequences = nullptr;
    QPushButton* proceedButton = nullptr;
    QLabel* noBackups = nullptr;
    QWidget* backups = nullptr;
    QVBoxLayout* backupRows = nullptr;
    std::vector<std::string> shownBackups;
    std::optional<Change> asked;
    /// With whether it is outdated, and whether it is being changed.
    std::tuple<FleetMonitor::HookState, bool, bool> shownState;
};

}  // namespace fleetwise
