#pragma once

#include "fleet/usage_tables.h"
#include "monitor/archive_index.h"
#include "monitor/fleet_monitor.h"
#include "ui/usage/usage_page.h"

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

class ChipChoice;
class FigureChoice;
class FigureSection;
class RankBars;

/// What was used by model or by project over a choice of periods, the largest first.
class RankingPage final : public UsagePage {
    Q_OBJECT

public:
    enum class Ranking { models, projects };

    /// Monitor and archive outlive this.
    RankingPage(FleetMonitor& monitor, const ArchiveIndex& archive, Ranking ranking,
                QWidget* parent = nullptr);

    Subject subject() const override { return Subject::spending; }
    QString name() const override;
    bool isWanted() const override;
    bool needsArchive() const override { return ranking == Ranking::projects; }
    void refresh(Date now) override;
    void setShowsTables(bool showsTables) override;

private:
    /// The first day of the chosen period, "2026-11-21"; empty for all there is.
    std::string firstDay(Date now) const;
    std::vector<UsageShare> shares(const std::string& first) const;
    QString summary(const std::string& first) const;
    /// What stands in place of the figures; empty where there are any.
    QString hint(const std::vector<UsageShare>& all) const;
    void showBars(const std::vector<UsageShare>& all, const ProjectNames& names);
    QString rowText(const QString& name, const UsageShare& share) const;

    FleetMonitor& monitor;
    const ArchiveIndex& archive;
    const Ranking ranking;
    RankBars* bars;
    FigureSection* section;
    FigureChoice* figures;
    ChipChoice* periods;
};

}  // namespace fleetwise
