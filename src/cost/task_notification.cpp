#include "cost/task_notification.h"

#include "session/task_notice.h"

#include <charconv>

namespace fleetwise {

namespace {

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

std::optional<TaskNotification> TaskNotification::parse(std::string_view prompt) {
    const auto notice = TaskEndNotice::parse(prompt);
    if (!notice) return {};
    TaskNotification notification{.taskId = std::string(notice->taskId), .ending = {}};
    auto& ending = notification.ending;
    ending.exitStatus = exitStatus(notice->summary);
    const bool isBroken = notice->status == "failed" || notice->status == "killed" ||
                          ending.exitStatus.value_or(0) != 0;
    ending.outcome = isBroken ? TaskEnding::Outcome::failed : TaskEnding::Outcome::completed;
    return notification;
}

}  // namespace fleetwise
