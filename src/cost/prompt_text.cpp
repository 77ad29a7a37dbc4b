#include "cost/prompt_text.h"

#include "foundation/text.h"

#include <array>

namespace fleetwise {

namespace {

constexpr std::string_view markOpening = "<!-- fleetwise:verbund=";
constexpr std::string_view markClosing = "-->";
constexpr std::string_view commandName = "<command-name>";
constexpr std::string_view commandMessage = "<command-message>";
constexpr std::string_view localCommandCaveat = "<local-command-caveat>";

constexpr std::array<std::string_view, 8> agentsOwnWords{
    "<task-notification>",    "<local-command-stdout>",
    "<local-command-stderr>", "<bash-input>",
    "<bash-stdout>",          "<bash-stderr>",
    "<system-reminder>",      "[Request interrupted by user",
};

struct FederationMark {
    std::size_t begin;
    std::size_t end;
    std::string_view id;
};

/// The first whole mark at or after `from`.
std::optional<FederationMark> findMark(std::string_view text, std::size_t from) {
    const auto begin = text.find(markOpening, from);
    if (begin == std::string_view::npos) return {};
    const auto idBegin = begin + markOpening.size();
    const auto idEnd = text.find(markClosing, idBegin);
    if (idEnd == std::string_view::npos) return {};
    return FederationMark{.begin = begin,
                          .end = idEnd + markClosing.size(),
                          .id = trimmed(text.substr(idBegin, idEnd - idBegin))};
}

std::string withoutMarks(std::string_view text) {
    std::string remaining;
    std::size_t copied = 0;
    while (const auto mark = findMark(text, copied)) {
        remaining += text.substr(copied, mark->begin - copied);
        copied = mark->end;
    }
    remaining += text.substr(copied);
    return remaining;
}

/// "/compact" of "<command-name>/compact</command-name> <command-message>…"; agents write the two
/// elements in either order. Empty where the text is no slash command.
std::string_view slashCommand(std::string_view text) {
    if (!text.starts_with(commandName) && !text.starts_with(commandMessage)) return {};
    const auto opening = text.find(commandName);
    if (opening == std::string_view::npos) return {};
    const auto begin = opening + commandName.size();
    const auto end = text.find("</command-name>", begin);
    if (end == std::string_view::npos) return {};
    return trimmed(text.substr(begin, end - begin));
}

}  // namespace

std::optional<std::string> PromptText::cleaned(std::string_view text) {
    const std::string unmarked = withoutMarks(text);
    const std::string_view words = trimmed(unmarked);
    if (words.empty() || words.starts_with(localCommandCaveat)) return {};
    const std::string_view command = slashCommand(words);
    return std::string(command.empty() ? words : command);
}

std::optional<std::string> PromptText::typedByUser(std::string_view text) {
    auto words = cleaned(text);
    if (!words) return {};
    for (const std::string_view beginning : agentsOwnWords) {
        if (words->starts_with(beginning)) return {};
    }
    return words;
}

std::string PromptText::federationMark(std::string_view federationId) {
    return std::string(markOpening) + std::string(federationId) + " " + std::string(markClosing);
}

std::optional<std::string> PromptText::federationId(std::string_view text) {
    std::optional<std::string> id;
    std::size_t from = 0;
    while (const auto mark = findMark(text, from)) {
        if (!mark->id.empty()) id = mark->id;
        from = mark->end;
    }
    return id;
}

std::string PromptText::shortened(std::string_view text, std::size_t limit) {
    const std::string unmarked = withoutMarks(text);
    std::string_view rest = trimmed(unmarked);
    return shortenedText(trimmed(rest.substr(0, rest.find_first_of("\r\n"))), limit);
}

}  // namespace fleetwise
