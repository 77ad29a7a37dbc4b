#pragma once

#include "foundation/environment_lookup.h"
#include "reactions/program_output.h"
#include "reactions/tmux_pane.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// The tmux servers of this user. Calls wait for them: each command as long as `patience`, and of
/// servers that do not answer two.
class TmuxServers {
public:
    static constexpr std::string_view program = "tmux";

    struct Shown {
        std::string sessionName;
        std::optional<std::int32_t> client;  ///< the process that shows it; nothing: none does
    };

    /// `socketFolders` are what `socketFoldersOfThisUser` gives. `programs` outlives this.
    TmuxServers(std::vector<std::string> socketFolders, ProgramOutput& programs,
                std::chrono::milliseconds patience = std::chrono::milliseconds(500));

    /// Makes the pane that one of the processes was started in the visible one of its session, and
    /// has a terminal that is attached to the server show that session. Nothing where no server
    /// has such a pane.
    std::optional<Shown> show(const std::vector<std::int32_t>& processes);

    /// Where tmux keeps its sockets: below $TMUX_TMPDIR and /tmp.
    static std::vector<std::string> socketFoldersOfThisUser(const EnvironmentLookup& environment);

private:
    /// Of those socket folders that are this user's alone.
    std::vector<std::string> sockets() const;
    tl::expected<std::string, ProgramFailure> ask(const std::string& socket,
                                                  std::vector<std::string> arguments);
    Shown showIn(const std::string& socket, const std::vector<TmuxPane>& panes);

    std::vector<std::string> folders;
    ProgramOutput& programs;
    const std::chrono::milliseconds patience;
};

}  // namespace fleetwise
