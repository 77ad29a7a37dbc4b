#include "reactions/sound_player.h"

#include "foundation/directory.h"
#include "reactions/notification_policy.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <set>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::array<std::string_view, 2> suffixes{".aiff", ".oga"};

/// A program, and what its command line has before the file.
struct Player {
    std::string_view program;
    std::vector<std::string> beforeFile;
};

/// In the order they are looked for: those of the sound server first.
const std::array<Player, 7>& players() {
    static const std::array<Player, 7> known{{
        {"paplay", {}},
        {"pw-play", {}},
        {"canberra-gtk-play", {"-f"}},
        {"ogg123", {"-q"}},
        {"mpv", {"--no-video", "--really-quiet"}},
        {"ffplay", {"-nodisp", "-autoexit", "-loglevel", "quiet"}},
        {"afplay", {}},
    }};
    return known;
}

bool isName(std::string_view text) {
    return !text.empty() && text != SoundPlayer::none && !text.starts_with('.') &&
           text.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

/// Whether one that may be heard of came, from another state, into one of these.
bool isEntered(const FleetChange& change, std::initializer_list<SessionState> states) {
    return std::ranges::any_of(change.transitions, [&](const Transition& transition) {
        return transition.previous && std::ranges::count(states, transition.session->state) > 0 &&
               NotificationPolicy::notifies(*transition.session, change.rules.overrides,
                                            change.rules.newSessionsNotify);
    });
}

}  // namespace

SoundPlayer::SoundPlayer(ChildProcesses& givenProcesses, Lookup givenLookup,
                         std::vector<std::string> givenFolders)
    : processes(givenProcesses), lookup(std::move(givenLookup)), folders(std::move(givenFolders)) {}

void SoundPlayer::react(const FleetChange& change) {
    if (change.rules.isMuted) return;
    if (isEntered(change, {SessionState::done})) play(change.rules.doneSound, change.now);
    if (isEntered(change, {SessionState::waiting, SessionState::decision}))
        play(change.rules.waitingSound, change.now);
}

void SoundPlayer::play(std::string_view name, Date now) {
    if (isTooSoon(name, now)) return;
    const auto file = fileOf(name);
    if (file && start(name, *file)) lastPlayed.insert_or_assign(std::string(name), now);
}

bool SoundPlayer::isTooSoon(std::string_view name, Date now) const {
    const auto last = lastPlayed.find(name);
    // A clock that was set back must not make this wait.
    if (last == lastPlayed.end() || now < last->second) return false;
    return now - last->second < (playing.contains(name) ? longestSound : pause);
}

std::optional<std::string> SoundPlayer::fileOf(std::string_view name) const {
    if (!isName(name)) return {};
    for (const std::string& folder : folders) {
        for (const std::string_view suffix : suffixes) {
            std::string path = joinPath(folder, std::string(name).append(suffix));
            if (::access(path.c_str(), R_OK) == 0) return path;
        }
    }
    return {};
}

bool SoundPlayer::start(std::string_view name, const std::string& file) {
    const std::weak_ptr<bool> alive = aliveToken;
    const auto ended = [this, alive, played = std::string(name)](std::int32_t) {
        if (!alive.expired()) playing.erase(played);
    };
    for (const Player& player : players()) {
        const auto program = lookup(std::string(player.program));
        if (!program) continue;
        ChildCommand command{*program, player.beforeFile, {}};
        command.arguments.push_back(file);
        if (processes.start(command, ended)) {
            playing.emplace(name);
            return true;
        }
    }
    return false;
}

std::vector<std::string> SoundPlayer::available() const {
    std::set<std::string> names;
    for (const std::string& folder : folders) {
        for (const std::string_view suffix : suffixes) {
            for (DirectoryEntry& entry : listDirectory(folder, suffix)) {
                entry.name.resize(entry.name.size() - suffix.size());
                // Sound themes link one name to another's file.
                const bool isFile = entry.kind == FileKind::regular || entry.kind == FileKind::link;
                if (isFile && isName(entry.name)) names.insert(std::move(entry.name));
            }
        }
    }
    return {names.begin(), names.end()};
}

std::vector<std::string> SoundPlayer::systemFolders() {
    return {"/System/Library/Sounds", "/usr/local/share/sounds/freedesktop/stereo",
            "/usr/share/sounds/freedesktop/stereo"};
}

}  // namespace fleetwise
