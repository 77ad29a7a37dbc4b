#include "demo/registry_file.h"

#include "foundation/directory.h"
#include "foundation/regular_file.h"

#include <cmath>
#include <filesystem>
#include <fstream>

namespace fleetwise::demo {

namespace {

constexpr std::size_t maximumBytes = 1 << 16;

std::string_view statusOf(Standing standing) {
    switch (standing) {
        case Standing::busy:
            return "busy";
        case Standing::shell:
            return "shell";
        case Standing::asksPermission:
        case Standing::asksInput:
            return "waiting";
        case Standing::idle:
        case Standing::ended:
            break;
    }
    return "idle";
}

}  // namespace

RegistryFile::RegistryFile(std::string givenPath, Json givenEntry)
    : path(std::move(givenPath)), entry(std::move(givenEntry)) {}

std::map<std::string, RegistryFile> RegistryFile::of(const std::string& directory) {
    std::map<std::string, RegistryFile> files;
    for (const auto& listed : listDirectory(directory, ".json")) {
        const std::string path = joinPath(directory, listed.name);
        const auto text = readRegularFile(path, maximumBytes);
        const auto entry = text ? parseJson(*text) : std::nullopt;
        const auto id = entry ? member<std::string>(*entry, "sessionId") : std::nullopt;
        if (id) files.try_emplace(*id, path, *entry);
    }
    return files;
}

void RegistryFile::update(Standing standing, Date now) {
    if (standing == Standing::ended) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        return;
    }
    const auto milliseconds = static_cast<std::int64_t>(secondsSince1970(now) * 1000);
    entry["status"] = statusOf(standing);
    entry["statusUpdatedAt"] = entry["updatedAt"] = milliseconds;
    entry.erase("waitingFor");
    if (standing == Standing::asksPermission) entry["waitingFor"] = "permission prompt";
    if (standing == Standing::asksInput) entry["waitingFor"] = "input needed";
    std::ofstream(path, std::ios::trunc) << encodeJson(entry);
}

}  // namespace fleetwise::demo
