#include "session/task_notice.h"

#include "foundation/text.h"

namespace fleetwise {

namespace {

struct Element {
    std::string_view opening;
    std::string_view closing;
};

constexpr Element idElement{"<task-id>", "</task-id>"};
constexpr Element statusElement{"<status>", "</status>"};
constexpr Element summaryElement{"<summary>", "</summary>"};

/// The trimmed contents of the first such element; empty where there is none.
std::string_view contents(std::string_view text, const Element& element) {
    const auto begin = text.find(element.opening);
    if (begin == std::string_view::npos) return {};
    text.remove_prefix(begin + element.opening.size());
    const auto end = text.find(element.closing);
    return end == std::string_view::npos ? std::string_view() : trimmed(text.substr(0, end));
}

}  // namespace

bool isTaskNotice(std::string_view prompt) {
    return trimmed(prompt).starts_with("<task-notification>");
}

std::optional<TaskEndNotice> TaskEndNotice::parse(std::string_view prompt) {
    if (!isTaskNotice(prompt)) return {};
    const TaskEndNotice notice{contents(prompt, idElement), contents(prompt, statusElement),
                               contents(prompt, summaryElement)};
    const bool goesOn = notice.status.empty() || notice.status == "running";
    if (notice.taskId.empty() || goesOn) return {};
    return notice;
}

}  // namespace fleetwise
