// A command is on the hook's list from its launch until an answer of the agent no longer names
// it. Whether it still runs is not asked of the system: the agent's notice in the transcript tells
// that it ended; a command that left the list without one is taken as completed; and one that is
// still listed when its agent is gone went down with it. When it did so is not recorded anywhere:
// if it was seen running, that is now, else the last change of its output or of its session.

#include "sources/background_task_store.h"

#include "foundation/directory.h"
#include "sources/plain_file_name.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

namespace fleetwise {

namespace {

using Status = BackgroundTask::Status;
using Surroundings = BackgroundTaskStore::Surroundings;

const TaskEnding* endingOf(const std::string& id, const Surroundings& around) {
    if (around.endings == nullptr) return nullptr;
    const auto found = around.endings->find(id);
    return found == around.endings->end() ? nullptr : &found->second;
}

std::optional<Date> outputDate(const std::string& id, const Surroundings& around) {
    const std::string name = id + ".output";
    if (!around.outputDirectory || !isPlainFileName(name)) return {};
    const auto entry = inspectFile(joinPath(*around.outputDirectory, name));
    if (!entry || entry->kind != FileKind::regular) return {};
    return modificationDate(entry->stamp);
}

void conclude(BackgroundTask& task, const TaskEnding& ending, Date now) {
    const bool hasFailed = ending.outcome == TaskEnding::Outcome::failed;
    task.status = hasFailed ? Status::failed : Status::completed;
    task.exitStatus = ending.exitStatus;
    task.endedAt = ending.at ? ending.at : task.endedAt.value_or(now);
}

/// The task went down with its agent. `before` is how it was known, null if not at all.
void loseAgent(BackgroundTask& task, const BackgroundTask* before, const Surroundings& around,
               Date now) {
    const auto output = outputDate(task.id, around);
    task.status = output ? Status::aborted : Status::orphaned;
    if (before != nullptr) {
        task.endedAt = before->endedAt.value_or(now);
    } else {
        task.endedAt = output ? output : around.lastActivityAt.value_or(now);
    }
}

BackgroundTask listedTask(const std::string& id, const StatusStore::Launch& launch,
                          const BackgroundTask* before, const Surroundings& around, Date now) {
    BackgroundTask task{.id = id,
                        .command = launch.cmd,
                        .startedAt = launch.at,
                        .endedAt = {},
                        .exitStatus = {},
                        .status = Status::running};
    if (const TaskEnding* ending = endingOf(id, around)) {
        if (before != nullptr) task.endedAt = before->endedAt;
        conclude(task, *ending, now);
    } else if (!around.agentIsLive) {
        loseAgent(task, before, around, now);
    }
    return task;
}

/// A task that was known but is no longer listed.
BackgroundTask unlistedTask(BackgroundTask task, const Surroundings& around, Date now) {
    if (const TaskEnding* ending = endingOf(task.id, around)) {
        conclude(task, *ending, now);
    } else if (task.status == Status::running) {
        task.status = Status::completed;
        task.endedAt = now;
    }
    return task;
}

bool isListed(const BackgroundTask& task, Date now) {
    return !task.endedAt || now - *task.endedAt <= BackgroundTaskStore::recentlyEnded;
}

}  // namespace

std::optional<std::string> backgroundOutputDirectory(const std::string& sessionId,
                                                     const std::string& projectFolder,
                                                     std::uint32_t uid) {
    if (!isPlainFileName(sessionId) || !isPlainFileName(projectFolder)) return {};
    return fmt::format("/tmp/claude-{}/{}/{}/tasks", uid, projectFolder, sessionId);
}

std::vector<BackgroundTask> BackgroundTaskStore::tasks(const std::string& sessionId,
                                                       const Launches& launches,
                                                       const Surroundings& around, Date now) {
    const Tasks before = remembered(sessionId);
    if (launches.empty() && before.empty()) return {};
    Tasks after;
    for (const auto& [id, launch] : launches) {
        const auto known = before.find(id);
        after.emplace(id, listedTask(id, launch, known == before.end() ? nullptr : &known->second,
                                     around, now));
    }
    std::vector<BackgroundTask> listed;
    for (const auto& [id, task] : before) {
        if (launches.contains(id)) continue;
        BackgroundTask unlisted = unlistedTask(task, around, now);
        if (isListed(unlisted, now)) after.emplace(id, std::move(unlisted));
    }
    for (const auto& [id, task] : after) {
        if (isListed(task, now)) listed.push_back(task);
    }
    std::sort(listed.begin(), listed.end(),
              [](const BackgroundTask& left, const BackgroundTask& right) {
                  return std::tie(left.startedAt, left.id) < std::tie(right.startedAt, right.id);
              });
    replace(sessionId, std::move(after));
    return listed;
}

void BackgroundTaskStore::prune(const std::set<std::string>& keepingSessionIds) {
    const std::lock_guard guard(lock);
    std::erase_if(sessions,
                  [&](const auto& session) { return !keepingSessionIds.contains(session.first); });
}

BackgroundTaskStore::Tasks BackgroundTaskStore::remembered(const std::string& sessionId) {
    const std::lock_guard guard(lock);
    const auto found = sessions.find(sessionId);
    return found == sessions.end() ? Tasks() : found->second;
}

void BackgroundTaskStore::replace(const std::string& sessionId, Tasks tasks) {
    const std::lock_guard guard(lock);
    if (tasks.empty()) {
        sessions.erase(sessionId);
    } else {
        sessions.insert_or_assign(sessionId, std::move(tasks));
    }
}

}  // namespace fleetwise
