#pragma once

#include "fleet/session.h"
#include "fleet/session_details.h"
#include "ui/details/detail_row.h"

#include <QWidget>

#include <string>
#include <vector>

namespace fleetwise {

class DetailList;
class DetailsSection;
class FleetMonitor;
class FoldedText;
class SessionHeader;
class ShareBar;
class TimelineBar;

/// All that is known of one session, in sections of which those without content are left out.
class SessionPanel final : public QWidget {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit SessionPanel(FleetMonitor& monitor, QWidget* parent = nullptr);

    /// `details` as far as they have been read. Changes only what differs.
    void setSession(const Session& session, const SessionDetails& details);

signals:
    /// The session's menu is to open there.
    void menuWanted(const QPoint& globalPosition);
    /// The session's goal is to be edited.
    void goalWanted(const std::string& sessionId);

private:
    struct ListSection {
        DetailsSection* section = nullptr;
        DetailList* list = nullptr;
    };

    DetailsSection* addSection(const QString& title);
    FoldedText* addText(const QString& title);
    ListSection addList(const QString& title);
    void addGoal();
    void addCourse();
    void addStatistics();

    void showTexts(const Session& session, const SessionDetails& details);
    void showTimeline(const std::string& id);
    void showGoal(const std::string& id);
    void showStatistics(const Session& session);
    static void showRows(const ListSection& where, const std::vector<DetailRow>& rows);
    static void showShare(ShareBar* bar, std::optional<double> share);

    FleetMonitor& monitor;
    std::string shownId;
    std::string resumeText;  ///< of the shown session
    std::optional<std::string> resumedIn;

    SessionHeader* header;
    FoldedText* message;
    FoldedText* prompt;
    ListSection tasks;
    ListSection background;
    ListSection subagents;
    ListSection course;
    TimelineBar* timeline;
    DetailsSection* statistics;
    DetailList* context;
    ShareBar* contextBar;
    DetailList* counts;
    ListSection costs;
    ListSection goal;
    ShareBar* goalBar;
    ListSection places;
};

}  // namespace fleetwise
