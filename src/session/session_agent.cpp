#include "session/session_agent.h"

#include "foundation/text.h"
#include "localisation/localisation.h"

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

constexpr std::size_t longestName = 32;
constexpr std::string_view nameCharacters = "abcdefghijklmnopqrstuvwxyz0123456789-_.";
constexpr std::string_view unusableName = "?";

struct KnownAgent {
    std::string_view name;
    Text label;
    std::string_view symbol;
};

constexpr std::array<KnownAgent, 6> knownAgents{{
    {"claude", "Claude Code"_text, "sparkle"},
    {"codex", "Codex"_text, "chevron.left.forwardslash.chevron.right"},
    {"gemini", "Gemini"_text, "diamond"},
    {"cursor", "Cursor"_text, "cursorarrow"},
    {"aider", "Aider"_text, "wand.and.stars"},
    {unusableName, "?"_text, "questionmark"},
}};

const KnownAgent* findKnownAgent(std::string_view name) {
    const auto found = std::find_if(knownAgents.begin(), knownAgents.end(),
                                    [&](const KnownAgent& agent) { return agent.name == name; });
    return found == knownAgents.end() ? nullptr : &*found;
}

std::string normalised(std::string_view name) {
    const std::string lowered = asciiLowercased(trimmed(name));
    if (lowered.empty()) return std::string(SessionAgent().rawValue());
    const bool isUsable = lowered.size() <= longestName &&
                          lowered.find_first_not_of(nameCharacters) == std::string::npos;
    return isUsable ? lowered : std::string(unusableName);
}

}  // namespace

SessionAgent::SessionAgent(std::string_view name) : raw(normalised(name)) {}

std::string SessionAgent::label() const {
    if (const auto* agent = findKnownAgent(raw)) return localised(agent->label);
    std::string name = raw;
    char& first = name.front();
    if (first >= 'a' && first <= 'z') first = static_cast<char>(first - 'a' + 'A');
    return name;
}

std::string_view SessionAgent::symbol() const {
    const auto* agent = findKnownAgent(raw);
    return agent == nullptr ? "cpu" : agent->symbol;
}

}  // namespace fleetwise
