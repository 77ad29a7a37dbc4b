// The settings as far as they matter here: "hooks" maps an event's name to a list of groups, and a
// group's own "hooks" lists the commands. Other programs write into them too, so every level may
// hold anything.

#include "sources/hook_installer.h"

#include "foundation/atomic_file.h"
#include "foundation/json.h"
#include "foundation/regular_file.h"
#include "foundation/sha256.h"
#include "localisation/localisation.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace fleetwise {

namespace {

constexpr std::size_t maximumProgramSize = 256 << 20;
constexpr unsigned programMode = 0755;

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

Json ourGroup(std::string_view event, const std::string& installedHook) {
    const Json hook{{"type", "command"}, {"command", HookInstaller::command(event, installedHook)}};
    return {{"hooks", Json::array({hook})}};
}

/// The groups without our hooks, and without the groups that held nothing else.
Json foreignGroups(const Json::array_t& groups) {
    Json foreign = Json::array();
    for (Json group : groups) {
        if (hasOurs(group)) {
            auto& hooks = group["hooks"].get_ref<Json::array_t&>();
            std::erase_if(hooks, isOurs);
            if (hooks.empty()) continue;
        }
        foreign.push_back(std::move(group));
    }
    return foreign;
}

Json withOurs(Json settings, const std::string& installedHook) {
    Json& hooks = settings["hooks"];
    if (!hooks.is_object()) hooks = Json::object();
    for (const std::string_view event : HookInstaller::events) {
        Json groups = foreignGroups(list(hooks, event));
        groups.push_back(ourGroup(event, installedHook));
        hooks[std::string(event)] = std::move(groups);
    }
    return settings;
}

Json withoutOurs(Json settings) {
    const auto hooks = settings.find("hooks");
    if (hooks == settings.end() || !hooks->is_object()) return settings;
    for (const std::string_view event : HookInstaller::events) {
        const auto groups = hooks->find(event);
        if (groups == hooks->end() || !groups->is_array()) continue;
        *groups = foreignGroups(groups->get_ref<const Json::array_t&>());
        if (groups->empty()) hooks->erase(groups);
    }
    if (hooks->empty()) settings.erase(hooks);
    return settings;
}

}  // namespace

std::string installErrorText(const InstallError& error) {
    if (const auto* failure = std::get_if<FileFailure>(&error)) return failure->text();
    return localised(
        "Das Hook-Programm wurde im App-Bundle nicht gefunden. Bitte Fleetwise über »make install« neu bauen."_text);
}

bool HookInstaller::isInstalled(const std::string& settingsFile, const std::string& installedHook) {
    const auto file = SettingsFile::read(settingsFile);
    const auto settings = file ? file->document() : std::nullopt;
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

std::string HookInstaller::command(std::string_view event, const std::string& installedHook) {
    std::string quoted;
    for (const char character : installedHook) {
        if (character == '\'') quoted += "'\\'";
        quoted += character;
    }
    return fmt::format("'{}' {} {}", quoted, event, marker);
}

tl::expected<SettingsBackup, InstallError> HookInstaller::install(const Places& places, Date now) {
    if (const auto made = makePrivateDirectory(places.statusDir); !made) {
        return tl::unexpected(FileFailure{places.statusDir, made.error()});
    }
    if (auto placed = installHookBinary(places.bundledHook, places.installedHook); !placed) {
        return tl::unexpected(placed.error());
    }
    const auto file = SettingsFile::read(places.settingsFile);
    if (!file) return tl::unexpected(file.error());
    Json settings = withOurs(file->document().value_or(Json::object()), places.installedHook);
    return file->write(settings, places.stateDir, now);
}

tl::expected<SettingsBackup, InstallError> HookInstaller::uninstall(const Places& places,
                                                                    Date now) {
    const auto file = SettingsFile::read(places.settingsFile);
    auto settings = file ? file->document() : std::nullopt;
    if (!settings) return SettingsBackup{};
    return file->write(withoutOurs(*std::move(settings)), places.stateDir, now);
}

tl::expected<void, InstallError> HookInstaller::installHookBinary(
    const std::optional<std::string>& bundled, const std::string& installed) {
    if (!bundled) return tl::unexpected(HookBinaryMissing{});
    const auto program = readRegularFile(*bundled, maximumProgramSize);
    if (!program && program.error() == FileError::missing) {
        return tl::unexpected(HookBinaryMissing{});
    }
    if (!program) return tl::unexpected(FileFailure::ofReading(*bundled, program.error()));
    const auto written = writeFileAtomically(installed, *program, programMode);
    if (!written) return tl::unexpected(FileFailure{installed, written.error()});
    return {};
}

}  // namespace fleetwise
