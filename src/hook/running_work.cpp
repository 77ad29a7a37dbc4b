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

template <typename List>
auto* entryOf(List& list, std::string_view id) {
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

/// The text of the first element that `opening` opens; empty where there is none.
std::string_view element(std::string_view text, std::string_view opening) {
    const auto begin = text.find(opening);
    if (begin == std::string_view::npos) return {};
    text.remove_prefix(begin + opening.size());
    return text.substr(0, text.find('<'));
}

}  // namespace

void countSubagent(StatusRecord& record, std::string_view id) {
    const auto ids = record.subagents.all();
    if (!isUsableId(id) || std::find(ids.begin(), ids.end(), id) != ids.end()) return;
    record.subagents.add(id);
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

bool isTaskNotification(std::string_view prompt) {
    const auto begin = prompt.find_first_not_of(" \t\r\n");
    return begin != std::string_view::npos &&
           prompt.substr(begin).starts_with("<task-notification>");
}

std::string_view discountNotified(StatusRecord& record, std::string_view prompt) {
    if (!isTaskNotification(prompt)) return {};
    const auto status = element(prompt, "<status>");
    if (status.empty() || status == "running") return {};  // a watch that goes on
    const auto id = element(prompt, "<task-id>");
    discountSubagent(record, id);
    removeEntry(record.background, id);
    removeEntry(record.monitors, id);
    return id;
}

}  // namespace fleetwise::hook
