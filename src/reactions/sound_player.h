#pragma once

#include "foundation/date.h"
#include "reactions/child_processes.h"
#include "reactions/fleet_reaction.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Plays the desktop's sounds. Main thread only.
class SoundPlayer final : public FleetReaction {
public:
    /// The path of a program on PATH; nothing where there is none.
    using Lookup = std::function<std::optional<std::string>(const std::string& program)>;

    /// The name of no sound.
    static constexpr std::string_view none = "—";
    /// A sound is not begun again sooner, nor while it plays.
    static constexpr Seconds pause{1};
    /// A player that takes longer hangs, and is no longer minded.
    static constexpr Seconds longestSound{30};

    /// `folders` hold the sounds, see systemFolders. `processes` outlives this.
    SoundPlayer(ChildProcesses& processes, Lookup lookup,
                std::vector<std::string> folders = systemFolders());

    /// Plays `doneSound` and `waitingSound` of the rules: once each, where sessions that may
    /// notify became done, or came to ask something.
    void react(const FleetChange& change) override;

    /// Plays the sound of this name. One that is missing, or that no program can play, is silent.
    void play(std::string_view name, Date now);

    /// The names of the sounds, in their order: files in ".aiff" and ".oga", without that.
    std::vector<std::string> available() const;

    /// Where macOS and the desktops of Linux keep theirs (freedesktop.org, Sound Theme and Naming
    /// 0.8).
    static std::vector<std::string> systemFolders();

private:
    std::optional<std::string> fileOf(std::string_view name) const;
    bool start(std::string_view name, const std::string& file);

    ChildProcesses& processes;
    Lookup lookup;
    std::vector<std::string> folders;
    bool isTooSoon(std::string_view name, Date now) const;

    std::map<std::string, Date, std::less<>> lastPlayed;
    std::set<std::string, std::less<>> playing;  ///< the names of what has not ended yet
    const std::shared_ptr<bool> aliveToken = std::make_shared<bool>(true);
};

}  // namespace fleetwise
