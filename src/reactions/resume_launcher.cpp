#include "reactions/resume_launcher.h"

#include "foundation/atomic_file.h"
#include "foundation/directory.h"
#include "localisation/localisation.h"
#include "reactions/resume_command.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::string_view scriptName = "fortsetzen.command";
constexpr unsigned ownerMayRun = 0700;

/// A terminal and what its command line has between its name and the program to run.
struct Terminal {
    std::string_view name;
    std::vector<std::string> beforeScript;
};

/// In the order they are looked for: what the system was set to first.
const std::array<Terminal, 9>& terminals() {
    static const std::array<Terminal, 9> known{{
        {"x-terminal-emulator", {"-e"}},
        {"gnome-terminal", {"--"}},
        {"konsole", {"-e"}},
        {"kitty", {}},
        {"alacritty", {"-e"}},
        {"wezterm", {"start", "--"}},
        {"foot", {}},
        {"xfce4-terminal", {"-x"}},
        {"xterm", {"-e"}},
    }};
    return known;
}

/// What most terminals understand.
const std::vector<std::string> usualBeforeScript{"-e"};

const std::vector<std::string>& beforeScript(std::string_view terminal) {
    const std::string_view name = terminal.substr(terminal.find_last_of('/') + 1);
    const auto found = std::find_if(terminals().begin(), terminals().end(),
                                    [&](const Terminal& known) { return known.name == name; });
    return found == terminals().end() ? usualBeforeScript : found->beforeScript;
}

}  // namespace

ResumeLauncher::ResumeLauncher(std::string givenFolder, Lookup givenLookup,
                               ProcessLauncher& givenProcesses)
    : folder(std::move(givenFolder)), lookup(std::move(givenLookup)), processes(givenProcesses) {}

tl::expected<void, ResumeLauncher::Failure> ResumeLauncher::launch(
    const Request& request, const std::string& terminal) const {
    if (request.sessionId.empty() || request.sessionId.starts_with('-')) {
        return tl::unexpected(Failure::unsafeSessionId);
    }
    const std::string path = joinPath(folder, scriptName);
    if (!makePrivateDirectory(folder) ||
        !writeFileAtomically(path, script(request.cwd, request.command), ownerMayRun)) {
        return tl::unexpected(Failure::couldNotWrite);
    }
    std::vector<std::string> candidates;
    if (!terminal.empty()) candidates.push_back(terminal);
    for (const Terminal& known : terminals())
        candidates.emplace_back(known.name);
    for (const std::string& candidate : candidates) {
        const auto program = lookup(candidate);
        if (program && processes.startDetached(commandLine(*program, path))) return {};
    }
    return tl::unexpected(Failure::noTerminal);
}

std::string ResumeLauncher::script(const std::optional<std::string>& cd, std::string_view command) {
    std::string lines =
        "#!/bin/sh\n"
        "# Von Fleetwise angelegt, um eine Sitzung fortzusetzen.\n"
        "# Diese Datei wird bei jedem Klick überschrieben.\n";
    // Any other folder would depend on where the terminal starts.
    if (cd && cd->starts_with('/')) {
        const std::string directory = ResumeCommand::shellArgument(*cd);
        lines += "cd " + directory +
                 " || {\n"
                 "  echo \"Fleetwise: Das Projektverzeichnis gibt es nicht mehr:\"\n"
                 "  printf '%s\\n' " +
                 directory +
                 "\n"
                 "  echo \"\"\n"
                 "  echo \"Fenster schließen mit der Eingabetaste.\"\n"
                 "  read -r _\n"
                 "  exit 1\n"
                 "}\n";
    }
    lines += "exec ";
    return lines.append(command) + "\n";
}

std::vector<std::string> ResumeLauncher::commandLine(const std::string& terminal,
                                                     const std::string& script) {
    std::vector<std::string> command{terminal};
    const auto& between = beforeScript(terminal);
    command.insert(command.end(), between.begin(), between.end());
    command.push_back(script);
    return command;
}

std::string ResumeLauncher::failureText(Failure failure) {
    switch (failure) {
        case Failure::unsafeSessionId:
            return localised("Diese Sitzung lässt sich nicht fortsetzen."_text);
        case Failure::couldNotWrite:
            return localised("Das Startskript ließ sich nicht schreiben."_text);
        case Failure::noTerminal:
            break;
    }
    return localised("Es wurde kein Terminal gefunden."_text);
}

}  // namespace fleetwise
