#include "sources/task_list_store.h"

#include "foundation/directory.h"
#include "foundation/json_reader.h"
#include "foundation/text.h"
#include "sources/plain_file_name.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t maximumBytes = 1 << 20;

using Status = TaskListStore::Status;

/// Nothing for a status unknown to us, such as that of a task given up: neither open nor done.
std::optional<Status> statusFrom(std::string_view text) {
    if (text == "pending") return Status::pending;
    if (text == "in_progress") return Status::inProgress;
    if (text == "completed") return Status::completed;
    return {};
}

/// Nothing where the member is no text or blank.
std::optional<std::string> printableMember(JsonObject& object, std::string_view key) {
    const auto text = memberIfPresent<std::string_view>(object, key);
    if (!text || trimmed(*text).empty()) return {};
    return printable(trimmed(*text));
}

/// The number in a name such as "12.json"; names without one come last.
int numberOf(const std::string& name) {
    int number = std::numeric_limits<int>::max();
    std::from_chars(name.data(), name.data() + name.size(), number);
    return number;
}

}  // namespace

struct TaskListStore::Task {
    std::optional<Status> status;
    std::optional<std::string> subject;
    std::optional<std::string> activeForm;  ///< else the subject

    static std::optional<Task> decoded(std::string_view padded) {
        Task task;
        bool hasStatus = false;
        thread_local JsonReader reader;
        const bool isObject = reader.readObject(padded, [&](JsonObject& object) {
            const auto name = memberIfPresent<std::string_view>(object, "status");
            if (!name) return;
            hasStatus = true;
            task.status = statusFrom(*name);
            task.subject = printableMember(object, "subject");
            task.activeForm = printableMember(object, "activeForm");
            if (!task.activeForm) task.activeForm = task.subject;
        });
        if (!isObject || !hasStatus) return {};
        return task;
    }
};

TaskListStore::TaskListStore(std::string sessionsFolder) : directory(std::move(sessionsFolder)) {}

std::vector<RecordCache<TaskListStore::Task>::Loaded> TaskListStore::load(
    const std::string& sessionId, SkipTally& skipped) {
    if (!isPlainFileName(sessionId)) return {};
    const std::string folder = joinPath(directory, sessionId);
    const auto entry = inspectFile(folder);
    if (!entry) return {};
    if (entry->kind != FileKind::directory) {
        ++skipped.notRegular;
        return {};
    }
    return cache.load(folder, maximumBytes, skipped, Task::decoded);
}

std::optional<TaskListStore::Progress> TaskListStore::progress(const std::string& sessionId,
                                                               SkipTally& skipped) {
    Progress progress;
    int activeNumber = std::numeric_limits<int>::max();
    for (const auto& loaded : load(sessionId, skipped)) {
        const Task& task = *loaded.record;
        if (!task.status) continue;
        ++progress.total;
        if (task.status == Status::completed) ++progress.completed;
        if (task.status != Status::inProgress) continue;
        ++progress.inProgress;
        const int number = numberOf(loaded.name);
        if (number < activeNumber || !progress.activeForm) {
            activeNumber = number;
            progress.activeForm = task.activeForm;
        }
    }
    if (progress.total == 0) return {};
    return progress;
}

std::vector<TaskListStore::Item> TaskListStore::list(const std::string& sessionId,
                                                     SkipTally& skipped) {
    auto records = load(sessionId, skipped);
    std::ranges::sort(records, {}, [](const auto& loaded) {
        return std::pair(numberOf(loaded.name), loaded.name);
    });
    std::vector<Item> items;
    for (const auto& loaded : records) {
        const Task& task = *loaded.record;
        if (task.status) items.push_back({task.subject.value_or(""), *task.status});
    }
    return items;
}

}  // namespace fleetwise
