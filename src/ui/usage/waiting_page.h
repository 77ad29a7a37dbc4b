#pragma once

#include "monitor/fleet_monitor.h"
#include "reactions/attention_log.h"
#include "ui/charts/rank_bars.h"
#include "ui/usage/usage_page.h"

#include <string>
#include <vector>

namespace fleetwise {

class DayBars;
class FigureSection;
class ProjectNames;

/// How long sessions waited for the user, by day and by project, over the last thirty days.
class WaitingPage final : public UsagePage {
    Q_OBJECT

public:
    static constexpr int shownDays = 30;

    /// The monitor outlives this.
    explicit WaitingPage(FleetMonitor& monitor, QWidget* parent = nullptr);

    Subject subject() const override { return Subject::waiting; }
    QString name() const override;
    void refresh(Date now) override;
    void setShowsTables(bool showsTables) override;

private:
    using Project = std::pair<std::string, AttentionLog::Summary>;

    void showDays(const std::vector<AttentionEpisode>& episodes, Date since, Date now);
    void showProjects(const std::vector<Project>& all);
    static RankRow rankRow(const Project& project, const ProjectNames& names);

    FleetMonitor& monitor;
    DayBars* days;
    FigureSection* daySection;
    RankBars* projects;
    FigureSection* projectSection;
};

}  // namespace fleetwise
