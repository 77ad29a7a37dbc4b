#pragma once

#include <QWidget>

#include <string>
#include <vector>

class QLabel;

namespace fleetwise {

class DetailList;
class DetailsSection;
class FleetMonitor;

/// Several sessions at once: how many there are, what they cost, and what can be done with all.
class SelectionPanel final : public QWidget {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit SelectionPanel(FleetMonitor& monitor, QWidget* parent = nullptr);

    void setSessions(const std::vector<std::string>& newIds);

protected:
    void changeEvent(QEvent* event) override;

private:
    void followFont();
    QWidget* makeActions();

    FleetMonitor& monitor;
    std::vector<std::string> ids;
    QLabel* count;
    DetailList* states;
    DetailsSection* costSection;
    DetailList* costs;
};

}  // namespace fleetwise
