#include "reactions/resume_command.h"

#include "foundation/directory.h"

#include <algorithm>
#include <vector>

namespace fleetwise {

namespace {

constexpr std::string_view harmlessCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_./:@%+=,";

std::optional<std::string> firstOf(const std::vector<std::string>& places,
                                   const ResumeCommand::Exists& exists) {
    const auto found = std::ranges::find_if(places, exists);
    return found == places.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

std::string ResumeCommand::shellArgument(std::string_view word) {
    const bool isHarmless = !word.empty() && !word.starts_with('-') &&
                            word.find_first_not_of(harmlessCharacters) == std::string_view::npos;
    if (isHarmless) return std::string(word);
    std::string quoted = "'";
    for (const char character : word) {
        if (character == '\'') {
            quoted += R"('\'')";
        } else {
            quoted += character;
        }
    }
    return quoted + "'";
}

std::string ResumeCommand::codexExecutable(const std::string& home, const Exists& exists) {
    return firstOf({joinPath(home, ".codex/plugins/.plugin-appserver/codex"),
                    joinPath(home, ".codex/bin/codex"), "/opt/homebrew/bin/codex",
                    "/usr/local/bin/codex", joinPath(home, ".local/bin/codex")},
                   exists)
        .value_or("codex");
}

std::string ResumeCommand::claudeExecutable(const std::string& home, const Exists& exists) {
    return firstOf({joinPath(home, ".local/bin/claude"), joinPath(home, ".claude/local/claude"),
                    "/usr/local/bin/claude", "/opt/homebrew/bin/claude"},
                   exists)
        .value_or("claude");
}

bool ResumeCommand::isSafe(std::string_view sessionId) {
    return !sessionId.empty() && !sessionId.starts_with('-');
}

std::optional<std::string> ResumeCommand::resumeOnly(std::string_view sessionId,
                                                     const SessionAgent& agent,
                                                     std::string_view program) {
    if (!isSafe(sessionId)) return {};
    const std::string quoted = shellArgument(sessionId);
    if (agent.isClaude()) return shellArgument(program) + " --resume " + quoted;
    if (agent.isCodex()) return shellArgument(program) + " resume " + quoted;
    return {};
}

std::optional<std::string> ResumeCommand::text(std::string_view sessionId,
                                               const std::optional<std::string>& cwd,
                                               const SessionAgent& agent, std::string_view codex) {
    auto resume = resumeOnly(sessionId, agent, agent.isClaude() ? "claude" : codex);
    if (!resume || !cwd || !cwd->starts_with('/')) return resume;
    return "cd " + shellArgument(*cwd) + " && " + *resume;
}

}  // namespace fleetwise
