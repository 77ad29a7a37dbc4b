#include "sources/session_registry.h"

#include "foundation/json_reader.h"
#include "sources/record_cache.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <tuple>

namespace fleetwise {

namespace {

using Entry = SessionRegistry::Entry;
using Cache = RecordCache<Entry>;

constexpr std::size_t maximumFileSize = 1 << 20;

Cache& cache() {
    // The agent writes its entry in place: one that is torn just now is whole at the next look.
    static Cache entries(Cache::OnFault::keepLast);
    return entries;
}

/// The value as T, if it is one.
template <typename T>
std::optional<T> valueIfPresent(JsonValue value) {
    return readValue<T>(value).value_or(std::nullopt);
}

// Each read leaves its target as it was where the value has a wrong type.

void read(JsonValue value, std::optional<std::string>& target) {
    if (const auto text = valueIfPresent<std::string_view>(value)) target = *text;
}

void read(JsonValue value, std::string& target) {
    if (const auto text = valueIfPresent<std::string_view>(value)) target = *text;
}

void read(JsonValue value, std::optional<double>& target) {
    if (const auto number = valueIfPresent<double>(value)) target = *number;
}

/// Milliseconds since 1970-01-01 UTC.
void read(JsonValue value, std::optional<Date>& target) {
    if (const auto number = valueIfPresent<double>(value)) target = dateFromMilliseconds(*number);
}

/// A process id that a process can have.
void read(JsonValue value, std::int32_t& target) {
    const std::int64_t number = valueIfPresent<std::int64_t>(value).value_or(0);
    if (number < 1 || number > std::numeric_limits<std::int32_t>::max()) return;
    target = static_cast<std::int32_t>(number);
}

/// A count that stands in the file as a text of digits or as a number.
void read(JsonValue value, std::optional<std::uint64_t>& target) {
    if (const auto digits = valueIfPresent<std::string_view>(value)) {
        std::uint64_t number = 0;
        const char* end = digits->data() + digits->size();
        const auto [stopped, error] = std::from_chars(digits->data(), end, number);
        if (error == std::errc() && stopped == end) target = number;
    } else if (const auto number = valueIfPresent<std::int64_t>(value); number && *number >= 0) {
        target = static_cast<std::uint64_t>(*number);
    }
}

template <auto field>
void readField(Entry& entry, JsonValue value) {
    read(value, entry.*field);
}

struct Member {
    std::string_view key;
    void (*read)(Entry&, JsonValue);
};

constexpr std::array entryMembers{
    Member{"pid", readField<&Entry::pid>},
    Member{"sessionId", readField<&Entry::sessionId>},
    Member{"cwd", readField<&Entry::cwd>},
    Member{"startedAt", readField<&Entry::startedAt>},
    Member{"version", readField<&Entry::version>},
    Member{"kind", readField<&Entry::kind>},
    Member{"entrypoint", readField<&Entry::entrypoint>},
    Member{"name", readField<&Entry::name>},
    Member{"nameSource", readField<&Entry::nameSource>},
    Member{"messagingSocketPath", readField<&Entry::messagingSocketPath>},
    Member{"status", readField<&Entry::status>},
    Member{"waitingFor", readField<&Entry::waitingFor>},
    Member{"statusUpdatedAt", readField<&Entry::statusUpdatedAt>},
    Member{"procStart", readField<&Entry::procStart>},
};

Entry readEntry(JsonObject& object) {
    Entry entry;
    for (auto field : object) {
        std::string_view key;
        JsonValue value;
        if (field.unescaped_key().get(key) || field.value().get(value)) continue;
        const auto member = std::ranges::find(entryMembers, key, &Member::key);
        if (member != entryMembers.end()) member->read(entry, value);
    }
    return entry;
}

bool isAlive(const Entry& entry, const ProcessTable& processes) {
    if (!processes.exists(entry.pid)) return false;
    if (!entry.procStart) return true;
    const auto process = processes.process(entry.pid);
    return !process || process->start == *entry.procStart;
}

/// What tells which of two entries is newer. The process id at the end only makes the choice
/// independent of the order in which the folder lists its files.
auto recency(const Cache::Loaded& loaded) {
    constexpr double unknown = -std::numeric_limits<double>::infinity();
    return std::tuple(loaded.record->startedAt.value_or(unknown), loaded.stamp.modifiedNanoseconds,
                      loaded.record->pid);
}

/// Of the entries of one session only the newest.
std::vector<Cache::Loaded> neueste(std::vector<Cache::Loaded> entries) {
    const auto precedes = [](const Cache::Loaded& left, const Cache::Loaded& right) {
        const int order = left.record->sessionId.compare(right.record->sessionId);
        return order < 0 || (order == 0 && recency(left) > recency(right));
    };
    const auto isSameSession = [](const Cache::Loaded& left, const Cache::Loaded& right) {
        return left.record->sessionId == right.record->sessionId;
    };
    std::sort(entries.begin(), entries.end(), precedes);
    entries.erase(std::unique(entries.begin(), entries.end(), isSameSession), entries.end());
    return entries;
}

}  // namespace

std::vector<SessionRegistry::Entry> SessionRegistry::liveEntries(const std::string& directory,
                                                                 const ProcessTable& processes,
                                                                 SkipTally& skipped) {
    auto loaded = cache().load(directory, maximumFileSize, skipped, decode);
    std::erase_if(loaded, [&](const auto& file) { return !isAlive(*file.record, processes); });
    std::vector<Entry> entries;
    for (const auto& file : neueste(std::move(loaded))) {
        entries.push_back(*file.record);
    }
    std::ranges::stable_sort(entries, {}, &Entry::pid);
    return entries;
}

std::optional<SessionRegistry::Entry> SessionRegistry::decode(std::string_view padded) {
    Entry entry;
    JsonReader reader;
    const bool isWhole =
        reader.readObject(padded, [&](JsonObject& object) { entry = readEntry(object); });
    if (!isWhole || entry.pid == 0 || entry.sessionId.empty()) return {};
    return entry;
}

std::optional<std::string> SessionRegistry::Entry::userGivenName() const {
    if (!name || name->empty() || nameSource.value_or("user") != "user") return {};
    return name;
}

}  // namespace fleetwise
