#pragma once

#include "ui/settings/settings_page.h"
#include "ui/settings/settings_services.h"

class QPushButton;

namespace fleetwise {

/// The address that changes of state are posted to, whether that works, and what is sent.
class WebhookPage final : public SettingsPage {
    Q_OBJECT

public:
    /// All that is given outlives this.
    WebhookPage(FleetMonitor& monitor, const SettingsServices& services, QWidget* parent = nullptr);
    ~WebhookPage() override;

    QString name() const override;

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void addAddress();
    void addContents();
    /// Stores the address in the field, unless it is refused; whether it is stored now.
    bool takeAddress();
    void clearAddress();
    void test();
    void showAddress();
    void showOutcome();
    std::string storedAddress() const;

    Webhook& webhook;
    const std::function<Date()> now;
    Field address;
    QPushButton* testButton = nullptr;
    QPushButton* clearButton = nullptr;
    QLabel* testResult = nullptr;
    QLabel* lastDelivery = nullptr;
};

}  // namespace fleetwise
