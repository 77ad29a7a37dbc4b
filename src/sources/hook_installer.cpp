// The settings as far as they matter here: "hooks" maps an event's name to a list of groups, and a
// group's own "hooks" lists the commands. Other programs write into them too, so every level may
// hold anything.

#include "sources/hook_installer.h"

#include "foundation/json.h"
#include "foundation/regular_file.h"
#include "foundation/sha256.h"

#include <algorithm>
#include <filesystem>

namespace fleetwise {

namespace {

constexpr std::size_t maximumSettingsSize = 16 << 20;

std::optional<Json> readSettings(const std::string& path) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(path, error);
    if (error) return {};
    const auto text = readRegularFile(resolved.string(), maximumSettingsSize);
    if (!text) return {};
    return parseJson(*text);
}

/// The elements of the list `key` of an object; none where there is no such list.
const Json::array_t& list(const Json& object, std::string_view key) {
    static const Json::array_t none;
    const auto found = object.find(key);
    return found != object.end() && found->is_array() ? found->get_ref<const Json::array_t&>()
                                                      : none;
}

bool isOurs(const Json& hook) {
    const auto command = member<std::string>(hook, "command");
    return command && command->find(HookInstaller::marker) != std::string::npos;
}

bool hasOurs(const Json& group) {
    return std::ranges::any_of(list(group, "hooks"), isOurs);
}

}  // namespace

bool HookInstaller::isInstalled(const std::string& settingsFile, const std::string& installedHook) {
    const auto settings = readSettings(settingsFile);
    if (!settings) return false;
    const auto hooks = settings->find("hooks");
    if (hooks == settings->end()) return false;
    const bool areAllThere = std::ranges::all_of(events, [&](std::string_view event) {
        return std::ranges::any_of(list(*hooks, event), hasOurs);
    });
    std::error_code ignored;
    return areAllThere && std::filesystem::is_regular_file(installedHook, ignored);
}

bool HookInstaller::isCurrent(const std::optional<std::string>& bundled,
                              const std::string& installed) {
    if (!bundled) return true;
    const auto digest = sha256OfFile(*bundled);
    return digest && digest == sha256OfFile(installed);
}

}  // namespace fleetwise
