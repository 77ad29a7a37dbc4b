#include "sources/settings_file.h"

#include "foundation/atomic_file.h"
#include "foundation/directory.h"
#include "sources/settings_document.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t maximumSizeBytes = 16 << 20;
constexpr std::string_view backupPrefix = "settings.backup.";
constexpr int maximumLinks = 40;  // as many as the system itself follows

/// The file that `path` leads to over links, whether it exists or not.
tl::expected<std::string, FileFailure> linkTarget(const std::string& path) {
    std::filesystem::path file = path;
    for (int followed = 0; followed <= maximumLinks; ++followed) {
        std::error_code isNoLink;
        const auto next = std::filesystem::read_symlink(file, isNoLink);
        if (isNoLink) return file.string();
        file = file.parent_path() / next;
    }
    return tl::unexpected(
        FileFailure{path, std::make_error_code(std::errc::too_many_symbolic_link_levels)});
}

/// A file that is to be created is the user's alone.
unsigned modeOf(const std::string& path) {
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    if (!std::filesystem::is_regular_file(status)) return 0600;
    return static_cast<unsigned>(status.permissions() & std::filesystem::perms::all);
}

/// "settings.backup.2026-11-12T13-05-40Z.json", with a number where others of that second exist.
std::string unusedBackupPath(const std::string& folder, Date now) {
    constexpr std::size_t lengthToTheSecond = 19;
    std::string time = internetDate(now).substr(0, lengthToTheSecond);
    std::replace(time.begin(), time.end(), ':', '-');
    const std::string stem = joinPath(folder, std::string(backupPrefix) + time + "Z");
    std::string path = stem + ".json";
    for (int number = 2; inspectFile(path); ++number)
        path = stem + "-" + std::to_string(number) + ".json";
    return path;
}

}  // namespace

tl::expected<SettingsFile, FileFailure> SettingsFile::read(const std::string& path) {
    auto target = linkTarget(path);
    if (!target) return tl::unexpected(target.error());
    auto contents = readRegularFile(*target, maximumSizeBytes);
    if (!contents && contents.error() != FileError::missing) {
        return tl::unexpected(FileFailure::ofReading(*target, contents.error()));
    }
    SettingsFile file;
    file.target = *std::move(target);
    if (contents) file.contents = *std::move(contents);
    return file;
}

std::optional<Json> SettingsFile::document() const {
    return contents ? parseSettings(*contents) : std::nullopt;
}

tl::expected<SettingsBackup, FileFailure> SettingsFile::write(const Json& document,
                                                              const std::string& backupFolder,
                                                              Date now) const {
    auto backup = backUp(backupFolder, now);
    if (!backup) return backup;
    const auto written = writeFileAtomically(target, printSettings(document), modeOf(target));
    if (!written) return tl::unexpected(FileFailure{target, written.error()});
    return backup;
}

tl::expected<SettingsBackup, FileFailure> SettingsFile::backUp(const std::string& folder,
                                                               Date now) const {
    if (!contents) return SettingsBackup{};
    if (const auto made = makePrivateDirectory(folder); !made) {
        return tl::unexpected(FileFailure{folder, made.error()});
    }
    const std::string path = unusedBackupPath(folder, now);
    const auto written = writeFileAtomically(path, *contents);
    if (!written) return tl::unexpected(FileFailure{path, written.error()});
    return SettingsBackup{path};
}

std::vector<std::string> SettingsFile::backups(const std::string& backupFolder) {
    auto entries = listDirectory(backupFolder, ".json");
    std::erase_if(entries, [](const auto& entry) {
        return entry.kind != FileKind::regular || !entry.name.starts_with(backupPrefix);
    });
    std::ranges::sort(entries, std::greater(), [](const auto& entry) {
        return std::pair(entry.stamp.modifiedNanoseconds, entry.name);
    });
    std::vector<std::string> paths;
    for (const auto& entry : entries)
        paths.push_back(joinPath(backupFolder, entry.name));
    return paths;
}

}  // namespace fleetwise
