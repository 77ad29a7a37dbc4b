#include "fleet/session.h"

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

constexpr Seconds staleAfter{300};
constexpr Seconds staleAfterLongEvent{1800};
constexpr Seconds recentFailure{600};

constexpr std::int64_t usualContextWindow = 200'000;
constexpr std::int64_t largeContextWindow = 1'000'000;

/// Events after which a long silence is normal: the tool, the subagent or the compaction runs.
constexpr std::array<std::string_view, 3> longRunningEvents{"PreToolUse", "SubagentStart",
                                                            "PreCompact"};

bool hasFailed(BackgroundTask::Status status) {
    return status == BackgroundTask::Status::failed || status == BackgroundTask::Status::aborted ||
           status == BackgroundTask::Status::orphaned;
}

template <typename Predicate>
std::vector<BackgroundTask> filtered(const std::vector<BackgroundTask>& tasks,
                                     Predicate predicate) {
    std::vector<BackgroundTask> matching;
    std::copy_if(tasks.begin(), tasks.end(), std::back_inserter(matching), predicate);
    return matching;
}

}  // namespace

std::string Session::groupKey(GroupMode mode) const {
    switch (mode) {
        case GroupMode::status:
            return std::string(rawValue(state));
        case GroupMode::application:
            return hostBundleId.value_or(hostApp.value_or(std::string(rawValue(origin))));
        case GroupMode::project:
            return cwd.value_or("@noProject");
        case GroupMode::tool:
            return agent.rawValue();
        case GroupMode::federation:
            return federationId ? "@verbund:" + *federationId : "@noFederation";
    }
    return {};
}

bool Session::precedes(const Session& left, const Session& right) {
    if (left.state != right.state) return left.state < right.state;
    if (left.isFavorite != right.isFavorite) return left.isFavorite;
    if (left.lastActivityAt != right.lastActivityAt) {
        return left.lastActivityAt > right.lastActivityAt;
    }
    return left.id < right.id;
}

bool Session::isSelfDriven() const {
    return stats && stats->lastTurnOrigin && *stats->lastTurnOrigin != "human";
}

bool Session::isStale(Date now) const {
    // After a failed turn nothing more is to be expected, however long it is ago.
    if (!isLive || !isBusy(state) || !lastEventAt || lastEvent == "StopFailure") return false;
    const bool runsLong =
        subagentCount >= 1 ||
        (lastEvent && std::find(longRunningEvents.begin(), longRunningEvents.end(), *lastEvent) !=
                          longRunningEvents.end());
    // An answered question begins anew with the answer, of which no event tells.
    const Date heardAt = std::max(*lastEventAt, stateSince.value_or(*lastEventAt));
    return now - heardAt > (runsLong ? staleAfterLongEvent : staleAfter);
}

std::vector<BackgroundTask> Session::runningBackgroundTasks() const {
    return filtered(backgroundTasks, [](const BackgroundTask& task) {
        return task.status == BackgroundTask::Status::running;
    });
}

std::vector<BackgroundTask> Session::recentlyFailedBackgroundTasks(Date now) const {
    return filtered(backgroundTasks, [now](const BackgroundTask& task) {
        const std::optional<Date> ended = task.endedAt ? task.endedAt : task.startedAt;
        return hasFailed(task.status) && ended && now - *ended <= recentFailure;
    });
}

std::int64_t Session::contextLimit(std::optional<std::int64_t> threshold) const {
    if (threshold && *threshold > 0) return *threshold;
    if (codexContextWindow && *codexContextWindow > 0) return *codexContextWindow;
    const bool isLarge = (model && model->find("[1m]") != std::string::npos) ||
                         (stats && stats->contextTokens > usualContextWindow);
    return isLarge ? largeContextWindow : usualContextWindow;
}

std::optional<double> Session::contextFill(std::optional<std::int64_t> threshold) const {
    if (!stats || stats->contextTokens <= 0) return {};
    return static_cast<double>(stats->contextTokens) / static_cast<double>(contextLimit(threshold));
}

std::optional<Date> Session::elapsedReference() const {
    return isBusy(state) && turnStartedAt ? turnStartedAt : stateSince;
}

}  // namespace fleetwise
