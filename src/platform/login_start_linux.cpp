// An entry in the desktop's autostart folder, after the "Desktop Application Autostart" and the
// "Desktop Entry" document of freedesktop.org.

#include "foundation/atomic_file.h"
#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "foundation/text.h"
#include "localisation/localisation.h"
#include "platform/login_start.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t maximumEntryBytes = 64 << 10;

std::string withEscapes(std::string_view text, std::string_view escaped, char escape) {
    std::string result;
    for (const char character : text) {
        if (escaped.find(character) != std::string_view::npos) result += escape;
        result += character;
    }
    return result;
}

/// As the value of a key.
std::string entryValue(std::string_view text) {
    std::string value;
    for (const char character : text) {
        switch (character) {
            case '\\':
                value += "\\\\";
                break;
            case '\n':
                value += "\\n";
                break;
            case '\r':
                value += "\\r";
                break;
            case '\t':
                value += "\\t";
                break;
            default:
                value += character;
        }
    }
    return value;
}

/// One argument of a command: between quotation marks, and with "%", which begins a field code,
/// doubled.
std::string quotedArgument(std::string_view argument) {
    return '"' + withEscapes(withEscapes(argument, "%", '%'), "\"`$\\", '\\') + '"';
}

std::string entryFor(const std::string& program) {
    const std::string command =
        "env " + std::string(startsHiddenVariable) + "=1 " + quotedArgument(program);
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Fleetwise\n"
           "Icon=fleetwise\n"
           "Exec=" +
           entryValue(command) +
           "\n"
           // An entry whose program has gone is passed over without a message.
           "TryExec=" +
           entryValue(program) +
           "\n"
           "Terminal=false\n"
           "X-GNOME-Autostart-enabled=true\n";
}

/// The value of a key in the entry's main group; nothing where it has none.
std::optional<std::string_view> valueIn(std::string_view entry, std::string_view key) {
    bool isMainGroup = false;
    while (!entry.empty()) {
        const std::string_view line = trimmed(entry.substr(0, entry.find('\n')));
        entry.remove_prefix(std::min(entry.find('\n'), entry.size() - 1) + 1);
        if (line.starts_with('[')) isMainGroup = line == "[Desktop Entry]";
        const auto separator = line.find('=');
        if (!isMainGroup || separator == std::string_view::npos) continue;
        if (trimmed(line.substr(0, separator)) == key) return trimmed(line.substr(separator + 1));
    }
    return {};
}

/// What entryValue made of a text.
std::string textOfValue(std::string_view value) {
    std::string text;
    for (std::size_t index = 0; index < value.size(); ++index) {
        const bool isEscape = value[index] == '\\' && index + 1 < value.size();
        if (!isEscape) {
            text += value[index];
            continue;
        }
        const char escaped = value[++index];
        text += escaped == 'n' ? '\n' : escaped == 'r' ? '\r' : escaped == 't' ? '\t' : escaped;
    }
    return text;
}

/// Whether the program that the entry depends on exists, as far as a full path tells.
bool findsProgram(std::string_view entry) {
    const auto value = valueIn(entry, "TryExec");
    if (!value || !value->starts_with('/')) return true;
    return ::access(textOfValue(*value).c_str(), F_OK) == 0;
}

class AutostartEntry final : public LoginStart {
public:
    AutostartEntry(const std::string& configFolder, std::string givenProgram)
        : folder(joinPath(configFolder, "autostart")),
          path(joinPath(folder, "fleetwise.desktop")),
          program(std::move(givenProgram)) {}

    bool isOn() const override {
        const auto entry = readRegularFile(path, maximumEntryBytes);
        return entry && valueIn(*entry, "Exec") && valueIn(*entry, "Hidden") != "true" &&
               valueIn(*entry, "X-GNOME-Autostart-enabled") != "false" && findsProgram(*entry);
    }

    tl::expected<void, std::string> set(bool isOn) override {
        const auto present = inspectFile(path);
        if (present && present->kind != FileKind::regular) {
            return tl::unexpected(localisedFormat(
                "%@ ist keine gewöhnliche Datei und bleibt, wie sie ist. Nimm sie weg, damit Fleetwise dort eine eigene anlegen kann."_text,
                path));
        }
        const std::error_code failure = isOn ? write() : present ? remove() : std::error_code();
        if (!failure) return {};
        return tl::unexpected(
            localisedFormat("%@ lässt sich nicht ändern: %@"_text, path, failure.message()));
    }

private:
    std::error_code write() const {
        if (const auto made = makePrivateDirectory(folder); !made) return made.error();
        const auto written = writeFileAtomically(path, entryFor(program));
        return written ? std::error_code() : written.error();
    }

    std::error_code remove() const {
        if (::unlink(path.c_str()) == 0 || errno == ENOENT) return {};
        return {errno, std::generic_category()};
    }

    const std::string folder;
    const std::string path;
    const std::string program;
};

}  // namespace

std::unique_ptr<LoginStart> makeLoginStart(const std::string& configFolder, std::string program) {
    return std::make_unique<AutostartEntry>(configFolder, std::move(program));
}

}  // namespace fleetwise
