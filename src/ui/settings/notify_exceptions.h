#pragma once

#include "monitor/fleet_monitor.h"

#include <QWidget>

#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QVBoxLayout;

namespace fleetwise {

/// The user's choices for sessions and projects, also for those that are gone: each can be turned
/// over or taken back.
class NotifyExceptions final : public QWidget {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit NotifyExceptions(FleetMonitor& monitor, QWidget* parent = nullptr);

    void refresh();

private:
    struct Row {
        std::string key;
        QWidget* widget = nullptr;
        QLabel* name = nullptr;
        QLabel* explanation = nullptr;
        QComboBox* choice = nullptr;
    };
    struct Words {
        QString name;
        QString explanation;
    };

    Words words(const std::string& key) const;
    void rebuild(const NotificationPolicy::Overrides& overrides);
    Row makeRow(const std::string& key);
    void set(const std::string& key, bool notifies);
    void remove(const std::string& key);

    FleetMonitor& monitor;
    QLabel* none;
    QVBoxLayout* lines;
    std::vector<Row> rows;  ///< in the order of their keys
};

}  // namespace fleetwise
