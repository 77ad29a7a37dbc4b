#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/usage/usage_page.h"

#include <string>
#include <utility>
#include <vector>

class QBoxLayout;
class QComboBox;
class QLabel;

namespace fleetwise {

class QuotaSection;

/// The quota windows of an account over time, Codex's windows, the plans, and where all that comes
/// from.
class QuotaPage final : public UsagePage {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit QuotaPage(FleetMonitor& monitor, QWidget* parent = nullptr);

    Subject subject() const override { return Subject::quota; }
    QString name() const override;
    bool isWanted() const override;
    void refresh(Date now) override;
    void setShowsTables(bool showsTables) override;

private:
    void layOut();
    void showAccounts(const UsageOverview& usage);
    void showWindows(const UsageOverview& usage, Date now);
    void showCodex(const UsageOverview& usage, Date now);
    void showPlans(const UsageOverview& usage);

    FleetMonitor& monitor;
    QComboBox* accounts;
    std::vector<std::pair<std::string, std::string>> shownAccounts;  ///< organisation and title
    QuotaSection* fiveHour;
    QuotaSection* sevenDay;
    QLabel* codexHeading;
    QWidget* codex;
    QLabel* planHeading;
    QLabel* plans;
    QLabel* missing;  ///< where there is nothing to show
    QLabel* source;
    Date shownAt;
    /// The words and shares of Codex's windows that are shown.
    std::vector<std::pair<QString, int>> shownCodex;
};

}  // namespace fleetwise
