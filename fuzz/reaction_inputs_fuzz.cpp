// Any text as what a user types and what sessions bring into commands and addresses: nothing gets
// out of its quotes, and no address passes that others could read otherwise.

#include "foundation/text.h"
#include "foundation/utf8.h"
#include "foundation/web_address.h"
#include "reactions/editor_address.h"
#include "reactions/resume_command.h"
#include "reactions/state_action.h"
#include "reactions/tmux_pane.h"
#include "reactions/webhook.h"

#include <algorithm>

namespace {

/// Reads one word as a POSIX shell does; nothing where it is not exactly one, or more than a word.
std::optional<std::string> shellWord(std::string_view text) {
    std::string word;
    bool isQuoted = false;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        if (character == '\'') {
            isQuoted = !isQuoted;
            continue;
        }
        if (!isQuoted && character == '\\' && index + 1 < text.size()) {
            word += text[++index];
            continue;
        }
        if (!isQuoted && std::string_view(" \t\n;&|<>()$`\"*?[#~!{}^").find(character) !=
                             std::string_view::npos) {
            return {};
        }
        word += character;
    }
    if (isQuoted) return {};
    return word;
}

void require(bool holds) {
    if (!holds) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    const std::string text(data, data + size);
    require(shellWord(ResumeCommand::shellArgument(text)) == text);
    if (const auto address = EditorAddress::of("code", text)) {
        require(std::ranges::all_of(*address, [](char character) {
            return character > ' ' && character < '\x7f' && character != '"' && character != '\'';
        }));
    }
    if (const auto address = WebAddress::parse(text)) {
        require(!address->scheme.empty() && !address->host.empty());
        require(address->host.find_first_of("/\\@?# \t\n") == std::string::npos);
    }
    const auto accepted = Webhook::validate(text) ? std::nullopt : WebAddress::parse(trimmed(text));
    require(!accepted || accepted->scheme == "https" || Webhook::isLocal(accepted->host));
    if (const auto words = StateAction::split(text)) {
        for (const std::string& word : *words)
            require(word.size() <= text.size());
    }
    if (const auto document = parseJson(text)) {
        const auto actions = StateAction::decode(*document);
        require(StateAction::decode(Json(StateAction::encode(actions))).size() == actions.size());
    }
    const auto environment = StateAction::environment(SessionState::done, text);
    if (environment.contains("FLEETWISE_SESSION")) require(wellFormedUtf8(text) == text);
    for (const TmuxPane& pane : TmuxPane::parse(text))
        require(pane.process > 1 && pane.id.starts_with('%'));
    TmuxClient::parse(text);
    return 0;
}
