#include "reactions/action_runner.h"

#include "foundation/uuid.h"
#include "localisation/localisation.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <string_view>
#include <utility>

namespace fleetwise {

ActionRunner::ActionRunner(ChildProcesses& givenProcesses, std::function<Date()> givenNow,
                           StateAction::FileSystem givenFileSystem)
    : processes(givenProcesses), now(std::move(givenNow)), fileSystem(std::move(givenFileSystem)) {}

void ActionRunner::react(const FleetChange& change) {
    dropWhatWaitedTooLong();
    for (const Transition& transition : change.transitions)
        run(change.rules.stateActions, transition.session->id, transition.session->state);
    std::set<std::string_view> listed;
    for (const Session& session : change.sessions)
        listed.insert(session.id);
    std::vector<std::string> gone;
    for (const auto& [id, state] : lastRun) {
        if (!listed.contains(id)) gone.push_back(id);
    }
    forget(gone);
}

void ActionRunner::run(const std::vector<StateAction>& actions, const std::string& sessionId,
                       SessionState entering) {
    const auto [last, isFirst] = lastRun.try_emplace(sessionId, entering);
    if (!isFirst && std::exchange(last->second, entering) == entering) return;
    for (const StateAction& action : actions) {
        if (action.state != entering) continue;
        if (auto plan = action.plan(fileSystem)) {
            start(*plan, entering, sessionId);
        } else {
            remember({{action.command, {}}, entering, sessionId, now()}, randomUuid(),
                     plan.error().text());
        }
    }
}

void ActionRunner::start(const StateAction::Plan& plan, SessionState state,
                         const std::string& sessionId) {
    Request request{plan, state, sessionId, now()};
    if (running < maximumRunning) {
        launch(request);
    } else if (waiting.size() < maximumWaiting) {
        waiting.push_back(std::move(request));
    } else {
        remember(request, randomUuid(), localised("Zu viele Aktionen — verworfen."_text));
    }
}

void ActionRunner::dropWhatWaitedTooLong() {
    // In both directions: the clock may have been set.
    while (!waiting.empty() && std::chrono::abs(now() - waiting.front().at) > longestWait) {
        remember(waiting.front(), randomUuid(), localised("Zu lange gewartet — verworfen."_text));
        waiting.pop_front();
    }
}

void ActionRunner::launch(const Request& request) {
    std::string id = randomUuid();
    const std::weak_ptr<bool> alive = aliveToken;
    const auto started =
        processes.start({request.plan.executable, request.plan.arguments,
                         StateAction::environment(request.state, request.sessionId)},
                        [this, alive, id](std::int32_t exitCode) {
                            if (!alive.expired()) finish(id, exitCode);
                        });
    if (started) ++running;
    remember(request, std::move(id),
             started ? std::nullopt : std::optional<std::string>(started.error()));
}

void ActionRunner::finish(const std::string& entryId, std::int32_t exitCode) {
    const auto entry = std::ranges::find(entries, entryId, &Entry::id);
    if (entry != entries.end()) entry->exitCode = exitCode;
    --running;
    dropWhatWaitedTooLong();
    while (running < maximumRunning && !waiting.empty()) {
        const Request next = std::move(waiting.front());
        waiting.pop_front();
        launch(next);
    }
}

void ActionRunner::remember(const Request& request, std::string id,
                            std::optional<std::string> failure) {
    entries.push_back({.id = std::move(id),
                       .at = now(),
                       .state = request.state,
                       .sessionId = request.sessionId,
                       .executable = request.plan.executable,
                       .arguments = request.plan.arguments,
                       .exitCode = {},
                       .failure = std::move(failure)});
    if (entries.size() > maximumEntries) entries.pop_front();
}

void ActionRunner::forget(const std::vector<std::string>& sessionIds) {
    for (const std::string& id : sessionIds)
        lastRun.erase(id);
}

}  // namespace fleetwise
