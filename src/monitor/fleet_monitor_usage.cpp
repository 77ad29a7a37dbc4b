// Quota, plans and goals beside the list.

#include "monitor/fleet_monitor.h"

#include <utility>

namespace fleetwise {

void FleetMonitor::applyUsage(UsageOverview usage) {
    const bool differs = fleetUsage.adopt(std::move(usage));
    const MoneyBasis basis = moneyBasisFrom(environment.settings.get(Settings::moneyBasis));
    fleetUsage.announceBreaches(
        list, [&](const std::string& id) { return costs.figures({id}).money(basis).usd; });
    if (differs) notify(&Observer::usageChanged);
}

std::optional<GoalStore::Goal> FleetMonitor::goal(const std::string& id) const {
    const bool isOwn = fleetUsage.ownGoals().entries().contains(id);
    return fleetUsage.goal(id, isOwn ? costs.figures({id}).tally.all() : 0);
}

std::map<std::string, std::string> FleetMonitor::objectives() const {
    std::map<std::string, std::string> objectives;
    for (const auto& [id, entry] : fleetUsage.ownGoals().entries())
        objectives.emplace(id, entry.objective);
    for (const auto& [id, goal] : *usage().codexGoals)
        objectives.emplace(id, goal.objective);
    return objectives;
}

std::optional<OwnGoals::Entry> FleetMonitor::ownGoal(const std::string& id) const {
    return fleetUsage.ownGoals().entry(id);
}

void FleetMonitor::setOwnGoal(const std::string& id, const OwnGoals::Entry& entry) {
    fleetUsage.ownGoals().set(id, entry);
    notify(&Observer::usageChanged);
    // A new limit may be reached already, and a share of the window has to be worked out.
    if (hasCollected()) refresh();
}

void FleetMonitor::removeOwnGoal(const std::string& id) {
    fleetUsage.ownGoals().remove(id);
    notify(&Observer::usageChanged);
}

std::vector<UsageDay> FleetMonitor::usageDays(int count) const {
    return costs.usageDays(count);
}

std::vector<AttentionEpisode> FleetMonitor::waitingEpisodes(Date since) const {
    return environment.waitingEpisodes(since, environment.loop.now());
}

}  // namespace fleetwise
