#include "reactions/resume_launcher.h"

#include "foundation/atomic_file.h"
#include "foundation/directory.h"
#include "localisation/localisation.h"
#include "reactions/resume_command.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::string_view scriptName = "fortsetzen.command";
constexpr unsigned ownerMayRun = 0700;

/// A terminal and how its command line goes on to the program to run.
struct Terminal {
    std::string_view name;
    std::vector<std::string> beforeScript;
    /// Where the terminal takes the program as a text for a shell: what that argument begins with.
    std::optional<std::string> beforeQuoted;
};

/// In the order they are looked for: what the system was set to first.
const std::vector<Terminal>& knownTerminals() {
    static const std::vector<Terminal> known{
        {"x-terminal-emulator", {"-e"}, {}},
        {"gnome-terminal", {"--"}, {}},
        {"ptyxis", {"--"}, {}},
        {"kgx", {"--"}, {}},
        {"konsole", {"-e"}, {}},
        {"ghostty", {"-e"}, {}},
        {"kitty", {}, {}},
        {"alacritty", {"-e"}, {}},
        {"wezterm", {"start", "--"}, {}},
        {"foot", {}, {}},
        {"tilix", {"-e"}, {}},
        {"terminator", {"-x"}, {}},
        {"xfce4-terminal", {"-x"}, {}},
        {"mate-terminal", {"-x"}, {}},
        {"lxterminal", {}, "--command="},
        {"qterminal", {"-e"}, {}},
        {"terminology", {"-e"}, ""},
        {"rio", {"-e"}, {}},
        {"urxvt", {"-e"}, {}},
        {"xterm", {"-e"}, {}},
    };
    return known;
}

/// By the name or path of its program. One that is not known is told what most understand.
Terminal terminalOf(std::string_view program) {
    const std::string_view name = program.substr(program.find_last_of('/') + 1);
    const auto found = std::ranges::find(knownTerminals(), name, &Terminal::name);
    return found == knownTerminals().end() ? Terminal{name, {"-e"}, {}} : *found;
}

}  // namespace

ResumeLauncher::ResumeLauncher(std::string givenFolder, Lookup givenLookup,
                               ProcessLauncher& givenProcesses)
    : folder(std::move(givenFolder)), lookup(std::move(givenLookup)), processes(givenProcesses) {}

tl::expected<void, ResumeLauncher::Failure> ResumeLauncher::launch(
    const Request& request, const std::string& terminal) const {
    if (!ResumeCommand::isSafe(request.sessionId)) return tl::unexpected(Failure::unsafeSessionId);
    const std::string path = joinPath(folder, scriptName);
    if (!makePrivateDirectory(folder) ||
        !writeFileAtomically(path, script(request.cwd, request.command), ownerMayRun)) {
        return tl::unexpected(Failure::couldNotWrite);
    }
    std::vector<std::string> candidates;
    if (!terminal.empty()) candidates.push_back(terminal);
    for (std::string& known : terminals(lookup))
        candidates.push_back(std::move(known));
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

std::vector<std::string> ResumeLauncher::terminals(const Lookup& lookup) {
    std::vector<std::string> found;
    for (const Terminal& known : knownTerminals()) {
        std::string name(known.name);
        if (lookup(name)) found.push_back(std::move(name));
    }
    return found;
}

std::vector<std::string> ResumeLauncher::commandLine(const std::string& terminal,
                                                     const std::string& script) {
    const Terminal known = terminalOf(terminal);
    std::vector<std::string> command{terminal};
    command.insert(command.end(), known.beforeScript.begin(), known.beforeScript.end());
    command.push_back(
        known.beforeQuoted ? *known.beforeQuoted + ResumeCommand::shellArgument(script) : script);
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
