#include "reactions/resume_command.h"

#include "foundation/directory.h"

namespace fleetwise {

namespace {

constexpr std::string_view harmlessCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_./:@%+=,";

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
    for (const std::string& place : {
             joinPath(home, ".codex/plugins/.plugin-appserver/codex"),
             joinPath(home, ".codex/bin/codex"),
             std::string("/opt/homebrew/bin/codex"),
             std::string("/usr/local/bin/codex"),
             joinPath(home, ".local/bin/codex"),
         }) {
        if (exists(place)) return place;
    }
    return "codex";
}

std::optional<std::string> ResumeCommand::resumeOnly(std::string_view sessionId,
                                                     const SessionAgent& agent,
                                                     std::string_view codex) {
    if (agent.isClaude()) return "claude --resume " + shellArgument(sessionId);
    if (agent.isCodex()) return shellArgument(codex) + " resume " + shellArgument(sessionId);
    return {};
}

std::optional<std::string> ResumeCommand::text(std::string_view sessionId,
                                               const std::optional<std::string>& cwd,
                                               const SessionAgent& agent, std::string_view codex) {
    auto resume = resumeOnly(sessionId, agent, codex);
    if (!resume || !cwd) return resume;
    return "cd " + shellArgument(*cwd) + " && " + *resume;
}

}  // namespace fleetwise
