#include "sources/host_applications.h"

#include "foundation/text.h"
#include "sources/plain_file_name.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

namespace fleetwise {

namespace {

struct KnownProgram {
    std::string_view key;  ///< the last part of the executable's path, or another key
    std::string_view name;
    std::string_view bundleId;
};

constexpr auto knownPrograms = std::to_array<KnownProgram>({
    {"alacritty", "Alacritty", "Alacritty"},
    {"deepin-terminal", "Deepin Terminal", "deepin-terminal"},
    {"foot", "foot", "foot"},
    {"footserver", "foot", "foot"},
    {"ghostty", "Ghostty", "com.mitchellh.ghostty"},
    {"gnome-terminal-server", "Terminal", "org.gnome.Terminal"},
    {"guake", "Guake", "guake"},
    {"kgx", "Console", "org.gnome.Console"},
    {"kitty", "kitty", "kitty"},
    {"konsole", "Konsole", "org.kde.konsole"},
    {"lxterminal", "LXTerminal", "lxterminal"},
    {"mate-terminal", "MATE Terminal", "mate-terminal"},
    {"ptyxis", "Ptyxis", "org.gnome.Ptyxis"},
    {"ptyxis-agent", "Ptyxis", "org.gnome.Ptyxis"},
    {"qterminal", "QTerminal", "qterminal"},
    {"rio", "Rio", "rio"},
    {"rxvt-unicode", "rxvt-unicode", "rxvt-unicode"},
    {"st", "st", "st"},
    {"terminator", "Terminator", "terminator"},
    {"terminology", "Terminology", "terminology"},
    {"tilix", "Tilix", "com.gexperts.Tilix"},
    {"urxvt", "rxvt-unicode", "rxvt-unicode"},
    {"urxvtd", "rxvt-unicode", "rxvt-unicode"},
    {"warp", "Warp", "dev.warp.Warp"},
    {"warp-terminal", "Warp", "dev.warp.Warp"},
    {"wezterm-gui", "WezTerm", "org.wezfurlong.wezterm"},
    {"xfce4-terminal", "Xfce Terminal", "xfce4-terminal"},
    {"xterm", "XTerm", "xterm"},
    {"yakuake", "Yakuake", "org.kde.yakuake"},

    {"claude-desktop", "Claude", "claude-desktop"},
    {"code", "Visual Studio Code", "code"},
    {"code-insiders", "Visual Studio Code Insiders", "code-insiders"},
    {"codium", "VSCodium", "codium"},
    {"cursor", "Cursor", "cursor"},
    {"emacs", "Emacs", "emacs"},
    {"emacs-gtk", "Emacs", "emacs"},
    {"emacs-lucid", "Emacs", "emacs"},
    {"emacs-pgtk", "Emacs", "emacs"},
    {"gvim", "GVim", "gvim"},
    {"vim.gtk3", "GVim", "gvim"},
    {"kate", "Kate", "org.kde.kate"},
    {"nvim-qt", "Neovim-Qt", "nvim-qt"},
    {"sublime_text", "Sublime Text", "sublime_text"},
    {"windsurf", "Windsurf", "windsurf"},
    {"zed", "Zed", "dev.zed.Zed"},
    {"zed-editor", "Zed", "dev.zed.Zed"},
    {"zeditor", "Zed", "dev.zed.Zed"},
});

/// Editors whose process is either a launcher of that name or the Java runtime in their folder.
constexpr auto javaEditors = std::to_array<KnownProgram>({
    {"clion", "CLion", "jetbrains-clion"},
    {"goland", "GoLand", "jetbrains-goland"},
    {"idea", "IntelliJ IDEA", "jetbrains-idea"},
    {"intellij-idea", "IntelliJ IDEA", "jetbrains-idea"},
    {"phpstorm", "PhpStorm", "jetbrains-phpstorm"},
    {"pycharm", "PyCharm", "jetbrains-pycharm"},
    {"rider", "Rider", "jetbrains-rider"},
    {"rubymine", "RubyMine", "jetbrains-rubymine"},
    {"webstorm", "WebStorm", "jetbrains-webstorm"},
});

/// The applications that agents name by their identifier on macOS.
constexpr auto macApplications = std::to_array<KnownProgram>({
    {"com.microsoft.VSCode", "Visual Studio Code", "code"},
    {"com.openai.codex", "Codex", "com.openai.codex"},
    {"com.todesktop.230313mzl4w4u92", "Cursor", "cursor"},
});

HostApplication hostOf(const KnownProgram& known) {
    return {.name = std::string(known.name), .bundleId = std::string(known.bundleId)};
}

std::optional<HostApplication> lookUp(std::span<const KnownProgram> table, std::string_view key) {
    const auto known = std::ranges::find(table, key, &KnownProgram::key);
    return known == table.end() ? std::nullopt : std::optional(hostOf(*known));
}

/// Takes what follows the last `separator` off the end of `text`; all of it where there is none.
std::string_view takeLast(std::string_view& text, char separator) {
    const auto found = text.rfind(separator);
    const std::string_view last = text.substr(found == std::string_view::npos ? 0 : found + 1);
    text = text.substr(0, found == std::string_view::npos ? 0 : found);
    return last;
}

/// "/opt/pycharm-2026.2/jbr/bin/java": the folder around the runtime names the editor, with a
/// version or an edition behind it; below a package manager it is a folder further up.
std::optional<HostApplication> javaEditorAround(std::string_view executable) {
    const auto runtime = executable.find("/jbr/");
    if (runtime == std::string_view::npos) return {};
    std::string folders = asciiLowercased(executable.substr(0, runtime));
    for (std::string_view rest = folders; !rest.empty();) {
        const std::string_view folder = takeLast(rest, '/');
        for (const KnownProgram& editor : javaEditors) {
            if (folder.starts_with(editor.key)) return hostOf(editor);
        }
    }
    return {};
}

/// Undoes the unit names' "\x2d"; nothing where an escape is not of that form.
std::optional<std::string> unescaped(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        if (text.front() != '\\') {
            plain += text.front();
            text.remove_prefix(1);
            continue;
        }
        unsigned char byte = 0;
        if (text.size() < 4 || text[1] != 'x') return {};
        const auto [end, error] = std::from_chars(text.data() + 2, text.data() + 4, byte, 16);
        if (error != std::errc() || end != text.data() + 4) return {};
        plain += static_cast<char>(byte);
        text.remove_prefix(4);
    }
    return plain;
}

}  // namespace

std::optional<HostApplication> HostApplications::ofExecutable(std::string_view executable) {
    // The system marks a program so once an update has replaced its file.
    constexpr std::string_view replacedMark = " (deleted)";
    if (executable.ends_with(replacedMark)) executable.remove_suffix(replacedMark.size());
    const std::string_view program = executable.substr(executable.rfind('/') + 1);
    if (auto known = lookUp(knownPrograms, program)) return known;
    if (auto known = lookUp(javaEditors, program)) return known;
    if (program == "java") return javaEditorAround(executable);
    return {};
}

std::optional<HostApplication> HostApplications::ofBundleId(std::string_view bundleId) {
    return lookUp(macApplications, bundleId);
}

std::optional<std::string> HostApplications::idOfUnit(std::string_view unit) {
    if (!unit.starts_with("app-")) return {};
    unit.remove_prefix(4);
    // "[<launcher>-]<id>-<random>.scope" or "[<launcher>-]<id>[@<random>].service"; a "-" within
    // the id is escaped.
    const std::string_view kind = takeLast(unit, '.');
    if (kind == "scope") {
        takeLast(unit, '-');
    } else if (kind == "service") {
        unit = unit.substr(0, unit.find('@'));
    } else {
        return {};
    }
    auto id = unescaped(takeLast(unit, '-'));
    if (!id || !isPlainFileName(*id) || printable(*id) != *id) return {};
    return id;
}

}  // namespace fleetwise
