#include "sources/desktop_metadata_store.h"

#include "foundation/json_reader.h"
#include "foundation/regular_file.h"
#include "foundation/text.h"

#include <cmath>

namespace fleetwise {

namespace {

using Meta = DesktopMetadataStore::Meta;

constexpr std::string_view namePrefix = "local_";
constexpr std::string_view extension = ".json";
constexpr std::size_t maximumFileSize = 4 << 20;

/// As seconds, 10^11 is the year 5138; as milliseconds, 1973. The app has written both units.
constexpr double smallestMilliseconds = 1e11;

// Each read is false where the member has a wrong type, and leaves its target as it was where the
// member is absent.

bool read(JsonObject& object, std::string_view key, std::optional<std::string>& target) {
    const auto text = readMember<std::string_view>(object, key);
    if (!text) return false;
    if (*text && !trimmed(**text).empty()) target = **text;
    return true;
}

bool read(JsonObject& object, std::string_view key, std::optional<Date>& target) {
    const auto number = readMember<double>(object, key);
    if (!number) return false;
    if (*number) {
        target = std::abs(**number) >= smallestMilliseconds ? dateFromMilliseconds(**number)
                                                            : dateFromSeconds(**number);
    }
    return true;
}

bool read(JsonObject& object, std::string_view key, bool& target) {
    const auto flag = readMember<bool>(object, key);
    if (!flag) return false;
    target = flag->value_or(target);
    return true;
}

bool readMeta(JsonObject& object, Meta& meta) {
    return read(object, "cliSessionId", meta.cliSessionId) && read(object, "title", meta.title) &&
           read(object, "cwd", meta.cwd) && read(object, "model", meta.model) &&
           read(object, "effort", meta.effort) &&
           read(object, "permissionMode", meta.permissionMode) &&
           read(object, "lastActivityAt", meta.lastActivityAt) &&
           read(object, "isArchived", meta.isArchived) && read(object, "error", meta.error) &&
           read(object, "errorAt", meta.errorAt);
}

/// Null where the file cannot be read at all.
std::shared_ptr<const std::optional<Meta>> readFile(const std::string& path, SkipTally& skipped) {
    const auto contents = readRegularFile(path, maximumFileSize);
    if (contents) {
        return std::make_shared<std::optional<Meta>>(DesktopMetadataStore::decode(*contents));
    }
    skipped.count(contents.error());
    return nullptr;
}

}  // namespace

DesktopMetadataStore& DesktopMetadataStore::shared() {
    static DesktopMetadataStore store;
    return store;
}

DesktopSessions DesktopMetadataStore::load(const std::string& root, SkipTally& skipped) {
    DesktopSessions sessions;
    const auto values = cache.load(
        findRegularFiles(root, namePrefix, {extension}, skipped),
        [&](const FoundFile& file, const auto&) { return readFile(file.path, skipped); });
    for (const auto& value : values) {
        if (!value) continue;
        const std::optional<Meta>& meta = *value;
        if (!meta) {
            ++skipped.malformed;
        } else if (meta->cliSessionId) {
            const auto [entry, isNew] = sessions.emplace(*meta->cliSessionId, *meta);
            if (!isNew && entry->second.lastActivityAt < meta->lastActivityAt) {
                entry->second = *meta;
            }
        }
    }
    return sessions;
}

std::optional<Meta> DesktopMetadataStore::decode(std::string_view padded) {
    Meta meta;
    bool isMetadata = false;
    JsonReader json;
    json.readObject(padded, [&](JsonObject& object) { isMetadata = readMeta(object, meta); });
    return isMetadata ? std::optional(std::move(meta)) : std::nullopt;
}

}  // namespace fleetwise
