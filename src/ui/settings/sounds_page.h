#pragma once

#include "ui/settings/settings_page.h"
#include "ui/settings/settings_services.h"

#include <string>
#include <vector>

namespace fleetwise {

/// Which sound tells of what.
class SoundsPage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both outlive this.
    SoundsPage(FleetMonitor& monitor, const SettingsServices& services, QWidget* parent = nullptr);

    QString name() const override;

private:
    void addSound(const QString& occasion, const Setting<std::string_view>& setting,
                  const std::vector<std::string>& available);

    const SettingsServices& services;
};

}  // namespace fleetwise
