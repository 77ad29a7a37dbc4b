#pragma once

#include "ui/settings/settings_page.h"
#include "ui/settings/settings_services.h"

namespace fleetwise {

/// Language, start, power and the terminal to resume in.
class GeneralPage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both outlive this.
    GeneralPage(FleetMonitor& monitor, const SettingsServices& services, QWidget* parent = nullptr);

    QString name() const override;

signals:
    /// The introduction is to be shown again.
    void onboardingWanted();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void addLanguage();
    void addStart();
    void addTerminal();
    void setLoginStart(bool isOn);
    void showLoginStart();
    /// The stored terminal, with its field where it is none of the known ones.
    void showTerminal();
    void takeTerminalChoice();
    void takeTerminalPath();

    const SettingsServices& services;
    QCheckBox* login = nullptr;
    QLabel* loginFault = nullptr;
    QComboBox* terminal = nullptr;
    Field terminalPath;
    bool isTypingPath = false;  ///< "Anderes …" was chosen, and nothing is stored of it yet
};

}  // namespace fleetwise
