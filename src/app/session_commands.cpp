#include "app/session_commands.h"

#include "app/environment.h"
#include "foundation/directory.h"
#include "foundation/text.h"
#include "localisation/localisation.h"
#include "reactions/editor_address.h"
#include "reactions/resume_command.h"
#include "reactions/resume_launcher.h"
#include "reactions/tmux_servers.h"
#include "sources/paths.h"

#include <fmt/format.h>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr std::size_t mostAncestors = 64;
constexpr int mostNestedServers = 3;
constexpr std::size_t longestSessionName = 80;
constexpr unsigned scriptFolders = 16;

/// The process and its ancestors, the nearest first.
std::vector<std::int32_t> withAncestors(std::int32_t pid, const ProcessTable& processes) {
    std::vector<std::int32_t> line;
    for (auto process = processes.process(pid); process && pid > 1 && line.size() < mostAncestors;
         process = processes.process(pid)) {
        line.push_back(pid);
        pid = process->parent;
    }
    return line;
}

bool isAmong(const std::vector<std::int32_t>& line, std::int32_t pid) {
    return std::ranges::find(line, pid) != line.end();
}

/// Whether one of them is a tmux server.
bool isInTmux(const std::vector<std::int32_t>& line, const ProcessTable& processes) {
    return std::ranges::any_of(line, [&](std::int32_t pid) {
        const std::string program = processes.executable(pid).value_or("");
        return program.substr(program.find_last_of('/') + 1) == TmuxServers::program;
    });
}

bool canRun(const std::string& program) {
    return findProgram(program).has_value();
}

/// Where the agent's program is for a terminal; it may not be there.
std::string programOf(const SessionAgent& agent) {
    if (agent.isCodex()) return ResumeCommand::codexExecutable(Paths::home(), canRun);
    return canRun("claude") ? "claude" : ResumeCommand::claudeExecutable(Paths::home(), canRun);
}

std::string failureText(WindowFocusFailure failure) {
    switch (failure) {
        case WindowFocusFailure::notAllowed:
            return localised(
                "Dieser Desktop lässt kein Programm fremde Fenster nach vorn holen"_text);
        case WindowFocusFailure::noWindow:
            break;
    }
    return localised("Zu dieser Sitzung wurde kein Fenster gefunden"_text);
}

/// Of a session that ResumeCommand has no command for.
std::string noCommandText(const Session& session) {
    if (!ResumeCommand::isSafe(session.id))
        return ResumeLauncher::failureText(ResumeLauncher::Failure::unsafeSessionId);
    return localisedFormat("Sitzungen von %@ lassen sich nicht fortsetzen"_text,
                           session.agent.label());
}

}  // namespace

SessionCommands::SessionCommands(const Settings& givenSettings, const ProcessTable& givenProcesses,
                                 WindowFocus& givenWindows, ProcessLauncher& givenLauncher,
                                 ProgramOutput& givenPrograms)
    : settings(givenSettings),
      processes(givenProcesses),
      windows(givenWindows),
      launcher(givenLauncher),
      programs(givenPrograms) {}

tl::expected<void, std::string> SessionCommands::focus(const Session& session) const {
    if (openInEditor(session)) return {};
    // The id of a process that has ended may be another's by now.
    if (!session.pid || !session.isLive)
        return tl::unexpected(failureText(WindowFocusFailure::noWindow));
    return raiseWindowOf(*session.pid);
}

/// Whether the address could be handed over; what becomes of it nobody tells.
bool SessionCommands::openInEditor(const Session& session) const {
    if (!session.hostBundleId || !session.cwd) return false;
    const auto address = EditorAddress::of(*session.hostBundleId, *session.cwd);
    if (!address) return false;
    const auto opener = findProgram("xdg-open");
    return opener && launcher.startDetached({*opener, *address});
}

/// What runs in tmux has no window among its ancestors. The terminal that is attached to the server
/// may have one, or may itself run in tmux.
tl::expected<void, std::string> SessionCommands::raiseWindowOf(std::int32_t pid) const {
    auto line = withAncestors(pid, processes);
    TmuxServers servers(TmuxServers::socketFoldersOfThisUser(environmentVariable), programs);
    for (int depth = 0; depth < mostNestedServers && isInTmux(line, processes); ++depth) {
        const auto shown = servers.show(line);
        if (!shown) break;
        if (!shown->client) {
            return tl::unexpected(
                localisedFormat("Die tmux-Sitzung »%@« ist mit keinem Terminal verbunden"_text,
                                shortenedText(shown->sessionName, longestSessionName)));
        }
        const auto client = processes.process(*shown->client);
        line = withAncestors(client ? client->parent : 0, processes);
    }
    return windows.raise(line).map_error(failureText);
}

bool SessionCommands::isFocused(const Session& session, const std::vector<Session>& all) const {
    if (!session.pid) return false;
    // An editor may show anything but the terminal in it.
    if (EditorAddress::of(session.hostBundleId.value_or(""), "/")) return false;
    const auto front = windows.focused();
    if (!front || !front->isOnlyOne) return false;
    const auto line = withAncestors(*session.pid, processes);
    // Which pane the terminal shows, only tmux could tell.
    if (!isAmong(line, front->process) || isInTmux(line, processes)) return false;
    return std::ranges::none_of(all, [&](const Session& other) {
        return other.id != session.id && other.isLive && other.pid &&
               isAmong(withAncestors(*other.pid, processes), front->process);
    });
}

/// A terminal may not have read its script yet when the next one is written, so they take turns.
std::string SessionCommands::scriptFolder() {
    return joinPath(Paths::stateDir(), fmt::format("resume/{}", launches++ % scriptFolders));
}

tl::expected<void, std::string> SessionCommands::resume(const Session& session) {
    if (session.isLive) return tl::unexpected(localised("Diese Sitzung läuft bereits"_text));
    const std::string program = programOf(session.agent);
    const auto command = ResumeCommand::resumeOnly(session.id, session.agent, program);
    if (!command) return tl::unexpected(noCommandText(session));
    if (!canRun(program)) {
        return tl::unexpected(localisedFormat("Das Programm von %@ wurde nicht gefunden"_text,
                                              session.agent.label()));
    }
    const ResumeLauncher resumes(scriptFolder(), findProgram, launcher);
    return resumes
        .launch({.sessionId = session.id, .cwd = session.cwd, .command = *command},
                settings.get(Settings::terminalPath))
        .map_error(ResumeLauncher::failureText);
}

tl::expected<std::string, std::string> SessionCommands::resumeText(const Session& session) const {
    const auto text = ResumeCommand::text(session.id, session.cwd, session.agent,
                                          ResumeCommand::codexExecutable(Paths::home(), canRun));
    if (!text) return tl::unexpected(noCommandText(session));
    // A terminal takes control characters that are pasted for keys.
    if (printable(*text) != *text)
        return tl::unexpected(
            ResumeLauncher::failureText(ResumeLauncher::Failure::unsafeSessionId));
    return *text;
}

std::vector<std::string> SessionCommands::terminals() {
    return ResumeLauncher::terminals(findProgram);
}

}  // namespace fleetwise
