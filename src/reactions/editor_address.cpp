#include "reactions/editor_address.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace fleetwise {

namespace {

struct Editor {
    std::string_view hostId;
    std::string_view scheme;
};

constexpr auto editors = std::to_array<Editor>({
    {"code", "vscode"},
    {"code-insiders", "vscode-insiders"},
    {"code-insiders_code-insiders", "vscode-insiders"},
    {"code_code", "vscode"},
    {"codium", "vscodium"},
    {"codium_codium", "vscodium"},
    {"com.visualstudio.code", "vscode"},
    {"com.vscodium.codium", "vscodium"},
    {"cursor", "cursor"},
    {"dev.zed.Zed", "zed"},
    {"windsurf", "windsurf"},
});

// RFC 3986, section 2.3.
constexpr std::string_view unreserved =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";

}  // namespace

std::optional<std::string> EditorAddress::of(std::string_view hostId, std::string_view path) {
    const auto editor = std::ranges::find(editors, hostId, &Editor::hostId);
    if (editor == editors.end() || !path.starts_with('/')) return {};
    while (path.ends_with('/'))
        path.remove_suffix(1);
    std::string address = fmt::format("{}://file", editor->scheme);
    for (const char byte : path) {
        if (byte == '/' || unreserved.find(byte) != std::string_view::npos) {
            address += byte;
        } else {
            fmt::format_to(std::back_inserter(address), "%{:02X}",
                           static_cast<unsigned char>(byte));
        }
    }
    return address + "/";
}

}  // namespace fleetwise
