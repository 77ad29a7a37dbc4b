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
        const auto process = numberIn<std::int32_t>(takeWord(line));
        const std::string_view id = takeWord(line);
        const std::string_view window = takeWord(line);
        const std::string_view session = takeWord(line);
        if (!process || *process <= 1) return;
        if (!isId(id, '%') || !isId(window, '@') || !isId(session, '$')) return;
        panes.push_back({.process = *process,
                         .id = std::string(id),
                         .window = std::string(window),
                         .session = std::string(session),
                         .sessionName = printable(line)});
    });
    return panes;
}

std::vector<TmuxClient> TmuxClient::parse(std::string_view listing) {
    std::vector<TmuxClient> clients;
    forEachLine(listing, [&](std::string_view line) {
        const auto process = numberIn<std::int32_t>(takeWord(line));
        const auto lastActivity = numberIn<std::int64_t>(takeWord(line));
        const std::string_view session = takeWord(line);
        if (!process || *process <= 1 || !lastActivity || !isId(session, '$') || line.empty())
            return;
        clients.push_back({.process = *process,
                           .lastActivity = *lastActivity,
                           .session = std::string(session),
                           .name = std::string(line)});
    });
    return clients;
}

}  // namespace fleetwise
