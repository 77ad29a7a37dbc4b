#pragma once

#include "reactions/process_launcher.h"

#include <tl/expected.hpp>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Takes sessions up again in a terminal of the user's desktop.
class ResumeLauncher {
public:
    enum class Failure {
        unsafeSessionId,  ///< empty, or taken for a switch by the agent
        couldNotWrite,    ///< the script
        noTerminal,       ///< none found, or none that starts
    };

    struct Request {
        std::string sessionId;
        std::optional<std::string> cwd;  ///< the folder to change to
        std::string command;             ///< see ResumeCommand::resumeOnly
    };

    /// The path of a program on PATH, or of one given by its path; nothing where there is none
    /// that can be run.
    using Lookup = std::function<std::optional<std::string>(const std::string& program)>;

    /// `folder` takes the script, and is made where it is missing. `processes` must outlive this.
    ResumeLauncher(std::string folder, Lookup lookup, ProcessLauncher& processes);

    /// Opens the terminal, preferably `terminal`, the name or path of a program; empty leaves it
    /// to the desktop.
    tl::expected<void, Failure> launch(const Request& request, const std::string& terminal) const;

    /// The shell script that runs `command` in the folder `cd`, or says that the folder is gone
    /// and waits for Return.
    static std::string script(const std::optional<std::string>& cd, std::string_view command);

    /// The names of the terminals that are there, in the order in which `launch` tries them.
    static std::vector<std::string> terminals(const Lookup& lookup);

    /// How the terminal, by the name or path of its program, is told to run a script.
    static std::vector<std::string> commandLine(const std::string& terminal,
                                                const std::string& script);

    /// In the interface language.
    static std::string failureText(Failure failure);

private:
    std::string folder;
    Lookup lookup;
    ProcessLauncher& processes;
};

}  // namespace fleetwise
