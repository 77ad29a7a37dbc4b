#include "app/session_commands.h"

#include "foundation/directory.h"
#include "localisation/localisation.h"
#include "reactions/resume_command.h"
#include "reactions/resume_launcher.h"
#include "sources/paths.h"

#include <QStandardPaths>
#include <fmt/format.h>

#include <filesystem>

namespace fleetwise {

namespace {

constexpr std::size_t mostAncestors = 64;
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

std::optional<std::string> findProgram(const std::string& program) {
    const QString found = QStandardPaths::findExecutable(QString::fromStdString(program));
    if (found.isEmpty()) return {};
    return found.toStdString();
}

bool exists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
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

}  // namespace

SessionCommands::SessionCommands(const Settings& givenSettings, const ProcessTable& givenProcesses,
                                 WindowFocus& givenWindows, ProcessLauncher& givenLauncher)
    : settings(givenSettings),
      processes(givenProcesses),
      windows(givenWindows),
      launcher(givenLauncher) {}

tl::expected<void, std::string> SessionCommands::focus(const Session& session) const {
    if (!session.pid) return tl::unexpected(failureText(WindowFocusFailure::noWindow));
    return windows.raise(withAncestors(*session.pid, processes)).map_error(failureText);
}

/// A terminal may not have read its script yet when the next one is written, so they take turns.
std::string SessionCommands::scriptFolder() {
    return joinPath(Paths::stateDir(), fmt::format("resume/{}", launches++ % scriptFolders));
}

tl::expected<void, std::string> SessionCommands::resume(const Session& session) {
    const std::string codex = ResumeCommand::codexExecutable(Paths::home(), exists);
    const auto command = ResumeCommand::resumeOnly(session.id, session.agent, codex);
    if (!command) {
        return tl::unexpected(localisedFormat("Sitzungen von %@ lassen sich nicht fortsetzen"_text,
                                              session.agent.label()));
    }
    const ResumeLauncher resumes(scriptFolder(), findProgram, launcher);
    return resumes
        .launch({.sessionId = session.id, .cwd = session.cwd, .command = *command},
                settings.get(Settings::terminalPath))
        .map_error(ResumeLauncher::failureText);
}

}  // namespace fleetwise
