#include "sources/desktop_entry.h"

#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "foundation/text.h"
#include "sources/plain_file_name.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace fleetwise {

namespace {

constexpr std::size_t maximumBytes = 256 << 10;

/// The first part of `text` up to `separator`, which is taken off its front.
std::string_view takeFirst(std::string_view& text, char separator) {
    const std::string_view first = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(first.size() + 1, text.size()));
    return first;
}

std::optional<std::string> nameIn(std::string_view contents) {
    bool isMainGroup = false;
    while (!contents.empty()) {
        const std::string_view line = trimmed(takeFirst(contents, '\n'));
        if (line.starts_with('[')) {
            if (isMainGroup) return {};
            isMainGroup = line == "[Desktop Entry]";
            continue;
        }
        std::string_view value = line;
        if (!isMainGroup || trimmed(takeFirst(value, '=')) != "Name") continue;
        std::string name = printable(trimmed(value));
        if (!name.empty()) return name;
    }
    return {};
}

}  // namespace

std::vector<std::string> DesktopEntry::applicationFolders(const std::string& home,
                                                          const EnvironmentLookup& environment) {
    std::vector<std::string> folders;
    const auto add = [&](std::string_view dataFolder) {
        // A relative path in these variables is to be ignored.
        if (!dataFolder.starts_with('/')) return;
        std::string folder = joinPath(dataFolder, "applications");
        if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
            folders.push_back(std::move(folder));
        }
    };
    const auto value = [&](const std::string& name, const std::string& fallback) {
        const auto found = environment(name);
        return found && !found->empty() ? *found : fallback;
    };
    add(value("XDG_DATA_HOME", joinPath(home, ".local/share")));
    add(joinPath(home, ".local/share/flatpak/exports/share"));
    const std::string shared = value("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    for (std::string_view rest = shared; !rest.empty();)
        add(takeFirst(rest, ':'));
    add("/var/lib/flatpak/exports/share");
    add("/var/lib/snapd/desktop");
    return folders;
}

std::optional<std::string> DesktopEntry::nameOf(const std::string& id,
                                                const std::vector<std::string>& folders) {
    if (!isPlainFileName(id)) return {};
    for (const std::string& folder : folders) {
        // Package formats export their desktop files as links: unlike an agent's folder this one
        // belongs to the system's administrator or the user, so links are followed.
        std::error_code error;
        const auto path = std::filesystem::canonical(joinPath(folder, id + ".desktop"), error);
        if (error) continue;
        const auto contents = readRegularFile(path.string(), maximumBytes);
        if (!contents) continue;
        if (auto name = nameIn(*contents)) return name;
    }
    return {};
}

}  // namespace fleetwise
