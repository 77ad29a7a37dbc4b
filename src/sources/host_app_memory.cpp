#include "sources/host_app_memory.h"

#include "foundation/atomic_file.h"
#include "foundation/json.h"
#include "foundation/regular_file.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int fileVersion = 1;
constexpr std::size_t maximumBytes = 4 << 20;
constexpr std::size_t maximumEntries = 500;
constexpr Seconds maximumAge = std::chrono::hours(24 * 90);
constexpr Seconds sightingInterval = std::chrono::hours(1);
constexpr Seconds writeInterval = std::chrono::minutes(1);
constexpr const char* legacySetting = "hostBundleIds";

using Host = HostAppMemory::Host;
using Hosts = HostAppMemory::Hosts;

std::optional<Host> decodedHost(const Json& entry) {
    const auto seenAt = member<Date>(entry, "seenAt");
    if (!seenAt) return {};
    Host host{.app = member<std::string>(entry, "app"),
              .bundleId = member<std::string>(entry, "bundleId"),
              .seenAt = *seenAt};
    if (!host.app && !host.bundleId) return {};
    return host;
}

/// Entries of the file that are whole and not too old; none where it is not a file of ours.
Hosts readHosts(const std::string& file, Date now) {
    Hosts hosts;
    const auto contents = readRegularFile(file, maximumBytes);
    const auto document = contents ? parseJson(*contents) : std::nullopt;
    if (!document || member<int>(*document, "version") != fileVersion) return hosts;
    const auto entries = document->find("entries");
    if (entries == document->end() || !entries->is_object()) return hosts;
    for (const auto& [sessionId, entry] : entries->items()) {
        auto host = decodedHost(entry);
        if (!host || host->seenAt < now - maximumAge) continue;
        // A date ahead of the clock would never age.
        host->seenAt = std::min(host->seenAt, now);
        hosts.emplace(sessionId, *std::move(host));
    }
    return hosts;
}

bool writeHosts(const std::string& file, const Hosts& hosts) {
    Json entries = Json::object();
    for (const auto& [sessionId, host] : hosts) {
        Json& entry = entries[sessionId] = {{"seenAt", internetDate(host.seenAt)}};
        if (host.app) entry["app"] = *host.app;
        if (host.bundleId) entry["bundleId"] = *host.bundleId;
    }
    const Json document = {{"version", fileVersion}, {"entries", std::move(entries)}};
    return writeFileAtomically(file, encodeJson(document)).has_value();
}

void dropOldest(Hosts& hosts, std::size_t count) {
    std::vector<std::pair<Date, std::string>> byDate;
    for (const auto& [sessionId, host] : hosts)
        byDate.emplace_back(host.seenAt, sessionId);
    const auto end = byDate.begin() + static_cast<std::ptrdiff_t>(count);
    std::nth_element(byDate.begin(), end, byDate.end());
    for (auto oldest = byDate.begin(); oldest != end; ++oldest)
        hosts.erase(oldest->second);
}

}  // namespace

HostAppMemory::HostAppMemory(std::string path, UserDefaults& settings, Date now)
    : file(std::move(path)) {
    if (!settings.value(legacySetting).is_null()) migrate(settings, now);
}

void HostAppMemory::migrate(UserDefaults& settings, Date now) {
    load(now);
    const Json legacy = settings.dictionary(legacySetting);
    Hosts snapshot;
    {
        const std::lock_guard guard(lock);
        for (const auto& [sessionId, bundleId] : legacy.items()) {
            if (!bundleId.is_string()) continue;
            hosts.try_emplace(
                sessionId, Host{.app = {}, .bundleId = bundleId.get<std::string>(), .seenAt = now});
        }
        snapshot = takeSnapshotLocked(now);
    }
    if (writeHosts(file, snapshot)) settings.remove(legacySetting);
}

void HostAppMemory::load(Date now) {
    {
        const std::lock_guard guard(lock);
        if (didLoad) return;
    }
    Hosts read = readHosts(file, now);
    const std::lock_guard guard(lock);
    if (didLoad) return;
    hosts = std::move(read);
    didLoad = true;
}

void HostAppMemory::remember(const std::vector<Sighting>& sightings, Date now) {
    load(now);
    const std::lock_guard guard(lock);
    for (const Sighting& sighting : sightings) {
        if (!sighting.app && !sighting.bundleId) continue;
        const auto known = hosts.find(sighting.sessionId);
        if (known != hosts.end() && known->second.app == sighting.app &&
            known->second.bundleId == sighting.bundleId &&
            now - known->second.seenAt < sightingInterval) {
            continue;
        }
        hosts.insert_or_assign(
            sighting.sessionId,
            Host{.app = sighting.app, .bundleId = sighting.bundleId, .seenAt = now});
        isDirty = true;
    }
    if (!isDirty || now - lastWrite < writeInterval) return;
    postWriteLocked(now);
}

Hosts HostAppMemory::entries(Date now) {
    load(now);
    const std::lock_guard guard(lock);
    return hosts;
}

void HostAppMemory::flush(Date now) {
    {
        const std::lock_guard guard(lock);
        if (isDirty) postWriteLocked(now);
    }
    queue.drain();
}

void HostAppMemory::postWriteLocked(Date now) {
    // Under the lock, so that an older snapshot never follows a newer one.
    queue.post([path = file, snapshot = takeSnapshotLocked(now)] { writeHosts(path, snapshot); });
}

Hosts HostAppMemory::takeSnapshotLocked(Date now) {
    std::erase_if(hosts, [&](const auto& entry) { return entry.second.seenAt < now - maximumAge; });
    if (hosts.size() > maximumEntries) dropOldest(hosts, hosts.size() - maximumEntries);
    isDirty = false;
    lastWrite = now;
    return hosts;
}

}  // namespace fleetwise
