#pragma once

#include "ui/settings/settings_page.h"

#include <map>
#include <string>
#include <vector>

class QVBoxLayout;

namespace fleetwise {

/// The user's names for the accounts whose quota is measured.
class AccountsPage final : public SettingsPage {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit AccountsPage(FleetMonitor& monitor, QWidget* parent = nullptr);

    QString name() const override;

private:
    struct Account {
        std::string organisation;
        QString title;  ///< what it is called without a name of the user's

        bool operator==(const Account&) const = default;
    };

    std::vector<Account> accounts() const;
    void showAccounts();
    void addAccount(const Account& account);
    QString nameOf(const std::string& organisation) const;
    void store(const std::string& organisation, const QString& typed);

    QLabel* missing;
    QWidget* content;
    QVBoxLayout* fields;
    std::vector<Account> shownAccounts;
    std::map<std::string, QLineEdit*> edits;  ///< by organisation
};

}  // namespace fleetwise
