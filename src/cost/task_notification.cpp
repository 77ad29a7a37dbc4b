#include "cost/task_notification.h"

#include "foundation/text.h"

#include <charconv>

namespace fleetwise {

namespace {

/// The trimmed contents of the first element `name`; empty where there is none.
std::string_view element(std::string_view text, const std::string& name) {
    const std::string opening = "<" + name + ">";
    const auto begin = text.find(opening);
    if (begin == std::string_view::npos) return {};
    text.remove_prefix(begin + opening.size());
    const auto end = text.find("</" + name + ">");
    return end == std::string_view::npos ? std::string_view() : trimmed(text.substr(0, end));
}

std::optional<int> exitStatus(std::string_view summary) {
    // What stands in quotes is the user's description of the command.
    const auto quote = summary.rfind('"');
    if (quote != std::string_view::npos) summary.remove_prefix(quote);
    constexpr std::string_view words = "exit code ";
    const auto begin = summary.find(words);
    if (begin == std::string_view::npos) return {};
    summary.remove_prefix(begin + words.size());
    int status = 0;
    const auto read = std::from_chars(summary.data(), summary.data() + summary.size(), status);
    return read.ec == std::errc() ? std::optional(status) : std::nullopt;
}

}  // namespace

bool TaskNotification::begins(std::string_view prompt) {
    return trimmed(prompt).starts_with("<task-notification>");
}

std::optional<TaskNotification> TaskNotification::parse(std::string_view prompt) {
    if (!begins(prompt)) return {};
    TaskNotification notification{.taskId = std::string(element(prompt, "task-id")), .ending = {}};
    if (notification.taskId.empty()) return {};
    auto& ending = notification.ending;
    ending.exitStatus = exitStatus(element(prompt, "summary"));
    const std::string_view status = element(prompt, "status");
    if (status.empty() || status == "running") return {};  // a watch that goes on
    const bool isBroken =
        status == "failed" || status == "killed" || ending.exitStatus.value_or(0) != 0;
    ending.outcome = isBroken ? TaskEnding::Outcome::failed : TaskEnding::Outcome::completed;
    return notification;
}

}  // namespace fleetwise
