#include "sources/task_list_store.h"

#include "foundation/directory.h"
#include "foundation/json_reader.h"
#include "foundation/text.h"
#include "sources/plain_file_name.h"

#include <charconv>
#include <limits>

namespace fleetwise {

namespace {

constexpr std::size_t maximumBytes = 1 << 20;

enum class Status { pending, inProgress, completed, other };

Status statusFrom(std::string_view text) {
    if (text == "pending") return Status::pending;
    if (text == "in_progress") return Status::inProgress;
    if (text == "completed") return Status::completed;
    return Status::other;
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
    Status status = Status::other;
    std::optional<std::string> activeForm;

    static std::optional<Task> decoded(std::string_view padded) {
        Task task;
        bool hasStatus = false;
        thread_local JsonReader reader;
        const bool isObject = reader.readObject(padded, [&](JsonObject& object) {
            const auto name = memberIfPresent<std::string_view>(object, "status");
            if (!name) return;
            hasStatus = true;
            task.status = statusFrom(*name);
            for (const char* key : {"activeForm", "subject"}) {
                if (!task.activeForm) task.activeForm = printableMember(object, key);
            }
        });
        if (!isObject || !hasStatus) return {};
        return task;
    }
};

TaskListStore::TaskListStore(std::string sessionsFolder) : directory(std::move(sessionsFolder)) {}

std::optional<TaskListStore::Progress> TaskListStore::progress(const std::string& sessionId,
                                                               SkipTally& skipped) {
    if (!isPlainFileName(sessionId)) return {};
    const std::string folder = joinPath(directory, sessionId);
    const auto entry = inspectFile(folder);
    if (!entry) return {};
    if (entry->kind != FileKind::directory) {
        ++skipped.notRegular;
        return {};
    }
    Progress progress;
    int activeNumber = std::numeric_limits<int>::max();
    for (const auto& loaded : cache.load(folder, maximumBytes, skipped, Task::decoded)) {
        const Task& task = *loaded.record;
        // A status unknown to us, such as that of a task given up, is neither open nor done.
        if (task.status == Status::other) continue;
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

}  // namespace fleetwise
