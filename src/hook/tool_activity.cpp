#include "hook/tool_activity.h"

#include "foundation/text.h"

#include <algorithm>

namespace fleetwise::hook {

namespace {

std::string_view fileName(std::string_view path) {
    return path.substr(path.find_last_of('/') + 1);
}

std::string_view host(std::string_view address) {
    const auto scheme = address.find("://");
    if (scheme != std::string_view::npos) address.remove_prefix(scheme + 3);
    address = address.substr(0, address.find_first_of("/?#"));
    const auto user = address.rfind('@');
    return user == std::string_view::npos ? address : address.substr(user + 1);
}

std::string_view command(const ToolInput& input) {
    const auto line = firstLine(input.description);
    return line.empty() ? firstLine(input.command) : line;
}
std::string_view task(const ToolInput& input) {
    return firstLine(input.description);
}
std::string_view file(const ToolInput& input) {
    return fileName(input.filePath);
}
std::string_view pattern(const ToolInput& input) {
    return firstLine(input.pattern);
}
std::string_view site(const ToolInput& input) {
    return host(input.url);
}

constexpr struct {
    std::string_view tool;
    std::string_view (*activity)(const ToolInput&);
} activities[] = {
    {"Bash", command},      {"PowerShell", command}, {"Monitor", command}, {"Agent", task},
    {"Task", task},         {"Read", file},          {"Write", file},      {"Edit", file},
    {"MultiEdit", file},    {"NotebookEdit", file},  {"Grep", pattern},    {"Glob", pattern},
    {"WebSearch", pattern}, {"WebFetch", site},
};

}  // namespace

std::string_view firstLine(std::string_view text) {
    text = trimmed(text);
    return trimmed(text.substr(0, text.find_first_of("\n\r")));
}

std::string_view toolActivity(const HookEvent& event) {
    const auto known =
        std::find_if(std::begin(activities), std::end(activities),
                     [&](const auto& entry) { return entry.tool == event.toolName; });
    if (known == std::end(activities)) return event.toolName;
    const std::string_view activity = known->activity(event.toolInput);
    return activity.empty() ? event.toolName : activity;
}

}  // namespace fleetwise::hook
