#include "hook/running_work.h"

#include "hook/tool_activity.h"

#include <algorithm>

namespace fleetwise::hook {

namespace {

/// Agents' own ids have some ten characters. What is longer could fill the status file.
constexpr std::size_t longestId = 128;

bool isUsableId(std::string_view id) {
    return !id.empty() && id.size() <= longestId;
}

std::string_view orElse(std::string_view text, std::string_view otherwise) {
    return text.empty() ? otherwise : text;
}

/// The entry with this id; null where there is none.
template <typename List>
const auto* entryOf(const List& list, std::string_view id) {
    const auto entries = list.all();
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const auto& entry) { return entry.id == id; });
    return found == entries.end() ? nullptr : &*found;
}

/// Adds the entry unless it is known or has no usable id.
template <typename List, typename Entry>
void addOnce(List& list, const Entry& entry) {
    if (isUsableId(entry.id) && entryOf(list, entry.id) == nullptr) list.add(entry);
}

template <typename List>
void removeEntry(List& list, std::string_view id) {
    list.removeIf([&](const auto& entry) { return entry.id == id; });
}

/// Adds the entry, or what `known` says about it.
template <typename List, typename Entry>
void recountEntry(List& list, const List& known, const Entry& entry) {
    const auto* before = entryOf(known, entry.id);
    addOnce(list, before == nullptr ? entry : *before);
}

void planWakeup(StatusRecord& record, const HookEvent& event, double now) {
    const ToolResponse& response = event.toolResponse;
    if (event.toolName == "ScheduleWakeup" && response.scheduledFor) {
        record.wakeupAt = *response.scheduledFor / 1000;
    }
    if (event.toolName.starts_with("Cron") && response.nextFireAt) {
        const double next = *response.nextFireAt / 1000;
        const bool isOneOfMany = event.toolName != "CronList";
        const bool isAhead = isOneOfMany && record.wakeupAt && *record.wakeupAt > now;
        record.wakeupAt = isAhead ? std::min(*record.wakeupAt, next) : next;
    }
}

}  // namespace

void countSubagent(StatusRecord& record, std::string_view id) {
    if (isUsableId(id) && !record.subagents.contains(id)) record.subagents.add(id);
}

bool discountSubagent(StatusRecord& record, std::string_view id) {
    return record.subagents.removeIf([&](std::string_view known) { return known == id; });
}

void countLaunches(StatusRecord& record, const HookEvent& event, double now) {
    const ToolResponse& response = event.toolResponse;
    const ToolInput& input = event.toolInput;
    addOnce(record.background,
            Launch{response.backgroundTaskId, orElse(input.command, input.description), now});
    if (event.toolName == "Monitor") {
        addOnce(record.monitors, Watch{response.taskId, toolActivity(event), now});
    }
    planWakeup(record, event, now);
}

void recount(StatusRecord& record, const HookEvent& event, double now) {
    if (!event.listsBackgroundTasks) return;
    const auto background = record.background;
    const auto monitors = record.monitors;
    record.subagents.clear();
    record.background.clear();
    record.monitors.clear();
    for (const BackgroundTask& task : event.backgroundTasks.all()) {
        if (task.status != "running") continue;
        if (task.type == "subagent") countSubagent(record, task.id);
        if (task.type == "shell") {
            recountEntry(record.background, background,
                         Launch{task.id, orElse(task.command, task.description), now});
        }
        if (task.type == "monitor") {
            recountEntry(record.monitors, monitors,
                         Watch{task.id, orElse(task.description, task.command), now});
        }
    }
}

void discountTask(StatusRecord& record, std::string_view id) {
    discountSubagent(record, id);
    removeEntry(record.background, id);
    removeEntry(record.monitors, id);
}

}  // namespace fleetwise::hook
