#include "reactions/tmux_servers.h"

#include "foundation/directory.h"

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace fleetwise {

namespace {

constexpr int maximumUnanswered = 2;
constexpr std::size_t maximumSockets = 64;  ///< servers that are gone leave theirs behind

/// A client sends its environment to whoever listens, so tmux itself demands no less.
bool isOfThisUserAlone(const std::string& folder) {
    struct ::stat status {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::getuid() && (status.st_mode & S_IRWXO) == 0;
}

}  // namespace

TmuxServers::TmuxServers(std::vector<std::string> socketFolders, ProgramOutput& givenPrograms,
                         std::chrono::milliseconds givenPatience)
    : folders(std::move(socketFolders)), programs(givenPrograms), patience(givenPatience) {}

std::vector<std::string> TmuxServers::socketFoldersOfThisUser(
    const EnvironmentLookup& environment) {
    const std::string name = fmt::format("tmux-{}", ::getuid());
    std::vector<std::string> folders{joinPath("/tmp", name)};
    const auto chosen = environment("TMUX_TMPDIR");
    if (chosen && chosen->starts_with('/') && *chosen != "/tmp")
        folders.insert(folders.begin(), joinPath(*chosen, name));
    return folders;
}

std::vector<std::string> TmuxServers::sockets() const {
    std::vector<std::string> paths;
    for (const std::string& folder : folders) {
        if (!isOfThisUserAlone(folder)) continue;
        for (const DirectoryEntry& entry : listDirectory(folder)) {
            if (entry.kind == FileKind::other && paths.size() < maximumSockets)
                paths.push_back(joinPath(folder, entry.name));
        }
    }
    return paths;
}

/// -u: names come as they are, whatever the locale.
tl::expected<std::string, ProgramFailure> TmuxServers::ask(const std::string& socket,
                                                           std::vector<std::string> arguments) {
    std::vector<std::string> command{std::string(program), "-u", "-S", socket};
    std::move(arguments.begin(), arguments.end(), std::back_inserter(command));
    return programs.run(command, patience);
}

std::optional<TmuxServers::Shown> TmuxServers::show(const std::vector<std::int32_t>& processes) {
    int unanswered = 0;
    for (const std::string& socket : sockets()) {
        const auto listing = ask(socket, {"list-panes", "-a", "-F", std::string(TmuxPane::format)});
        if (!listing) {
            if (listing.error() == ProgramFailure::noAnswer && ++unanswered == maximumUnanswered)
                break;
            continue;
        }
        auto panes = TmuxPane::parse(*listing);
        std::erase_if(panes, [&](const TmuxPane& pane) {
            return std::ranges::find(processes, pane.process) == processes.end();
        });
        if (!panes.empty()) return showIn(socket, panes);
    }
    return {};
}

/// `panes` is one pane, as each of the sessions that share its window has it.
TmuxServers::Shown TmuxServers::showIn(const std::string& socket,
                                       const std::vector<TmuxPane>& panes) {
    const auto listing = ask(socket, {"list-clients", "-F", std::string(TmuxClient::format)});
    auto clients = TmuxClient::parse(listing.value_or(""));
    const auto paneShownBy = [&](const TmuxClient& client) {
        return std::ranges::find(panes, client.session, &TmuxPane::session);
    };
    // First those that show a session of the pane, then those that were used last.
    std::ranges::sort(clients, std::ranges::greater(), [&](const TmuxClient& client) {
        return std::pair(paneShownBy(client) != panes.end(), client.lastActivity);
    });
    const bool isShown = !clients.empty() && paneShownBy(clients.front()) != panes.end();
    const TmuxPane& pane = isShown ? *paneShownBy(clients.front()) : panes.front();
    ask(socket, {"select-window", "-t", pane.session + ":" + pane.window});
    ask(socket, {"select-pane", "-t", pane.id});
    if (clients.empty()) return {.sessionName = pane.sessionName, .client = {}};
    const TmuxClient& client = clients.front();
    if (!isShown) ask(socket, {"switch-client", "-c", client.name, "-t", pane.session});
    return {.sessionName = pane.sessionName, .client = client.process};
}

}  // namespace fleetwise
