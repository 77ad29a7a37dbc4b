#include "reactions/tmux_pane.h"

#include "foundation/text.h"

#include <charconv>
#include <optional>
#include <utility>

namespace fleetwise {

namespace {

/// Takes what stands before the next blank off the front of `line`.
std::string_view takeWord(std::string_view& line) {
    const std::string_view word = line.substr(0, line.find(' '));
    line.remove_prefix(std::min(word.size() + 1, line.size()));
    return word;
}

template <typename Number>
std::optional<Number> numberIn(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return number;
}

/// "%5", for the kind '%'.
bool isId(std::string_view text, char kind) {
    return text.starts_with(kind) && numberIn<std::uint32_t>(text.substr(1)).has_value();
}

}  // namespace

std::vector<TmuxPane> TmuxPane::parse(std::string_view listing) {
    std::vector<TmuxPane> panes;
    forEachLine(listing, [&](std::string_view line) {
        const auto processId = numberIn<std::int32_t>(takeWord(line));
        const std::string_view paneId = takeWord(line);
        const std::string_view windowId = takeWord(line);
        const std::string_view sessionId = takeWord(line);
        if (!processId || *processId <= 1) return;
        if (!isId(paneId, '%') || !isId(windowId, '@') || !isId(sessionId, '$')) return;
        panes.push_back({.process = *processId,
                         .id = std::string(paneId),
                         .window = std::string(windowId),
                         .session = std::string(sessionId),
                         .sessionName = printable(line)});
    });
    return panes;
}

std::vector<TmuxClient> TmuxClient::parse(std::string_view listing) {
    std::vector<TmuxClient> clients;
    forEachLine(listing, [&](std::string_view line) {
        const auto processId = numberIn<std::int32_t>(takeWord(line));
        const auto activeAt = numberIn<std::int64_t>(takeWord(line));
        const std::string_view sessionId = takeWord(line);
        if (!processId || *processId <= 1 || !activeAt || !isId(sessionId, '$') || line.empty())
            return;
        clients.push_back({.process = *processId,
                           .lastActivity = *activeAt,
                           .session = std::string(sessionId),
                           .name = std::string(line)});
    });
    return clients;
}

}  // namespace fleetwise
