#pragma once

#include "fleet/session_details.h"
#include "monitor/fleet_monitor.h"

#include <QScrollArea>

#include <optional>
#include <string>
#include <vector>

class QLabel;

namespace fleetwise {

class SelectionPanel;
class SessionPanel;

/// What is known of the selected sessions. Reads their files only while it can be seen, when
/// another session is selected and when that one did something, at most once a second.
class DetailsPane final : public QScrollArea, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit DetailsPane(FleetMonitor& monitor, QWidget* parent = nullptr);
    ~DetailsPane() override;

    /// Shows these sessions; one that is not listed is passed over.
    void setSessions(std::vector<std::string> newIds);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The menu of the session is to open there.
    void menuWanted(const std::string& sessionId, const QPoint& globalPosition);
    /// The session's goal is to be edited.
    void goalWanted(const std::string& sessionId);

protected:
    void showEvent(QShowEvent* event) override;

private:
    /// What of a session tells that its files may have changed.
    struct Sign {
        SessionState state = SessionState::unknown;
        std::optional<Date> lastActivityAt;
        std::optional<TaskListStore::Progress> tasks;
        std::int64_t subagents = 0;

        bool operator==(const Sign&) const = default;
    };
    static Sign signOf(const Session& session);

    void fleetChanged() override { follow(); }
    void clockTicked() override { follow(); }
    void settingsChanged() override { follow(); }
    void costsChanged() override { follow(); }
    void usageChanged() override { follow(); }

    void follow();
    void followFiles(const Session& session);
    void showSession(const Session& session);

    FleetMonitor& monitor;
    std::vector<std::string> ids;
    QLabel* empty;
    SessionPanel* session;
    SelectionPanel* selection;

    // Of the one session that is shown.
    SessionDetails details;
    std::optional<Sign> readSign;  ///< as it was when its files were read last
    Date readAt;
    bool isReading = false;
};

}  // namespace fleetwise
