#pragma once

#include "ui/settings/settings_page.h"
#include "ui/settings/settings_services.h"

namespace fleetwise {

/// Which version this is, what it reads and writes, and what it is made of.
class AboutPage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both outlive this.
    AboutPage(FleetMonitor& monitor, const SettingsServices& services, QWidget* parent = nullptr);

    QString name() const override;

private:
    struct Fact {
        QString name;
        QString words;
    };

    void addTitle(const QString& version);
    void addFacts(const QString& heading, const std::vector<Fact>& facts);

    QString copied;  ///< all of it as text
};

}  // namespace fleetwise
