// A status file is our own contract with the hook program, so reading it is strict: a known key of
// a wrong type makes the file malformed. Each C++ type of the record says how it stands in JSON
// (RawOf) and how it is made of that (convert); the record itself is then one table of keys, and
// one walk over the text reads them all.

#include "sources/status_store.h"

#include "foundation/directory.h"
#include "foundation/json_reader.h"
#include "sources/record_cache.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <type_traits>

namespace fleetwise {

namespace {

using Launch = StatusStore::Launch;
using MonitorField = StatusStore::MonitorField;
using Record = StatusStore::Record;
using Watch = StatusStore::Watch;

using MonitorFields = std::vector<MonitorField>;
template <typename Value>
using Dictionary = std::map<std::string, Value>;

constexpr std::string_view extension = ".json";
constexpr std::size_t maximumFileSize = 4 << 20;

RecordCache<Record>& cache() {
    static RecordCache<Record> shared;
    return shared;
}

template <typename Target>
struct RawOf;
template <>
struct RawOf<std::string> : std::type_identity<std::string_view> {};
template <>
struct RawOf<Date> : std::type_identity<double> {};
template <>
struct RawOf<std::int64_t> : std::type_identity<std::int64_t> {};
template <>
struct RawOf<Launch> : std::type_identity<JsonObject> {};
template <>
struct RawOf<MonitorFields> : std::type_identity<JsonArray> {};
template <typename Value>
struct RawOf<Dictionary<Value>> : std::type_identity<JsonObject> {};
template <typename Target>
struct RawOf<std::optional<Target>> : RawOf<Target> {};

// Every convert returns false where something inside the value has a wrong type.

bool convert(std::string_view text, std::string& target) {
    target = text;
    return true;
}

bool convert(double seconds, Date& target) {
    target = dateFromSeconds(seconds);
    return true;
}

bool convert(std::int64_t number, std::int64_t& target) {
    target = number;
    return true;
}

bool convert(JsonObject object, Launch& target);
bool convert(JsonArray array, MonitorFields& target);
template <typename Value>
bool convert(JsonObject object, Dictionary<Value>& target);

template <typename Raw, typename Target>
bool convert(Raw raw, std::optional<Target>& target) {
    return convert(raw, target.emplace());
}

/// Makes `target` of the value and leaves it alone where that is null; false where its type is
/// wrong.
template <typename Target>
bool readInto(Target& target, JsonValue value) {
    const auto raw = readValue<typename RawOf<Target>::type>(value);
    if (!raw) return false;
    return !*raw || convert(**raw, target);
}

/// Calls `visit(key, value)` on every member until it returns false; whether it never did.
template <typename Visit>
bool everyMember(JsonObject object, Visit&& visit) {
    for (auto field : object) {
        std::string_view key;
        JsonValue value;
        if (field.unescaped_key().get(key) || field.value().get(value)) return false;
        if (!visit(key, value)) return false;
    }
    return true;
}

bool convert(JsonObject object, Launch& target) {
    return everyMember(object, [&](std::string_view key, JsonValue value) {
        if (key == "cmd") return readInto(target.cmd, value);
        if (key == "at") return readInto(target.at, value);
        return true;
    });
}

/// Elements that are neither texts nor numbers say nothing about a watch and are left out.
bool convert(JsonArray array, MonitorFields& target) {
    for (auto element : array) {
        simdjson::ondemand::json_type type{};
        if (element.type().get(type)) return false;
        if (type == simdjson::ondemand::json_type::string) {
            std::string_view text;
            if (element.get(text)) return false;
            target.emplace_back(std::string(text));
        } else if (type == simdjson::ondemand::json_type::number) {
            double number = 0;
            if (element.get(number)) return false;
            target.emplace_back(number);
        }
    }
    return true;
}

template <typename Value>
bool convert(JsonObject object, Dictionary<Value>& target) {
    return everyMember(object, [&](std::string_view key, JsonValue value) {
        std::optional<Value> read;
        if (!readInto(read, value) || !read) return false;
        target.insert_or_assign(std::string(key), std::move(*read));
        return true;
    });
}

template <auto field>
bool readField(Record& record, JsonValue value) {
    return readInto(record.*field, value);
}

struct Member {
    std::string_view key;
    bool (*read)(Record&, JsonValue);
    bool isRequired = false;
};

constexpr std::array recordMembers{
    Member{"session_id", readField<&Record::sessionId>, true},
    Member{"state", readField<&Record::state>, true},
    Member{"event", readField<&Record::event>},
    Member{"agent", readField<&Record::agent>},
    Member{"tool", readField<&Record::tool>},
    Member{"activity", readField<&Record::activity>},
    Member{"message", readField<&Record::message>},
    Member{"cwd", readField<&Record::cwd>},
    Member{"ts", readField<&Record::ts>, true},
    Member{"event_ts", readField<&Record::eventTs>},
    Member{"permission_mode", readField<&Record::permissionMode>},
    Member{"turn_started_at", readField<&Record::turnStartedAt>},
    Member{"done_at", readField<&Record::doneAt>},
    Member{"subagents", readField<&Record::subagents>},
    Member{"background", readField<&Record::background>},
    Member{"monitors", readField<&Record::monitors>},
    Member{"wakeup_at", readField<&Record::wakeupAt>},
    Member{"state_ts", readField<&Record::stateTs>},
};

std::optional<Record> readRecord(JsonObject object) {
    Record record;
    std::set<std::string_view> missing;
    for (const Member& member : recordMembers) {
        if (member.isRequired) missing.insert(member.key);
    }
    const bool isSound = everyMember(object, [&](std::string_view key, JsonValue value) {
        const auto member = std::ranges::find(recordMembers, key, &Member::key);
        bool isNull = false;
        if (member == recordMembers.end()) return true;
        if (value.is_null().get(isNull)) return false;
        if (!isNull) missing.erase(key);
        return isNull || member->read(record, value);
    });
    if (!isSound || !missing.empty() || record.sessionId.empty()) return {};
    return record;
}

/// Of several texts or times of one watch the first counts.
std::optional<Watch> watchOf(const MonitorFields& fields) {
    const std::string* label = nullptr;
    const double* since = nullptr;
    for (const MonitorField& field : fields) {
        if (label == nullptr) label = std::get_if<std::string>(&field);
        if (since == nullptr) since = std::get_if<double>(&field);
    }
    if (since == nullptr) return {};
    return Watch{.label = label == nullptr ? std::string() : *label,
                 .since = dateFromSeconds(*since)};
}

}  // namespace

StatusStore::Records StatusStore::load(const std::string& directory, SkipTally& skipped) {
    Records records;
    for (auto& loaded : cache().load(directory, maximumFileSize, skipped, decode)) {
        const std::string& sessionId = loaded.record->sessionId;
        records.insert_or_assign(sessionId, std::move(loaded.record));
    }
    return records;
}

std::optional<StatusStore::Record> StatusStore::decode(std::string_view padded) {
    std::optional<Record> record;
    JsonReader reader;
    const bool isWhole =
        reader.readObject(padded, [&](JsonObject& object) { record = readRecord(object); });
    if (!isWhole) return {};
    return record;
}

SessionState StatusStore::repairedState(std::string_view state,
                                        const std::optional<std::string>& event,
                                        std::optional<std::int64_t> subagents) {
    const SessionState read = sessionStateFrom(state).value_or(SessionState::unknown);
    const bool isThrough = event && isThroughWithSubagents(read, *event, subagents.value_or(0));
    return isThrough ? SessionState::done : read;
}

std::vector<StatusStore::Watch> StatusStore::watches(const Record* record) {
    std::vector<Watch> watches;
    if (record == nullptr) return watches;
    for (const auto& [id, fields] : record->monitors) {
        if (auto watch = watchOf(fields)) watches.push_back(std::move(*watch));
    }
    std::ranges::stable_sort(watches, {}, &Watch::since);
    return watches;
}

void StatusStore::prune(const std::set<std::string>& keeping, Seconds olderThan,
                        const std::string& directory, Date now) {
    const Date cutoff = now - olderThan;
    for (const DirectoryEntry& entry : listDirectory(directory, extension)) {
        if (entry.kind != FileKind::regular || modificationDate(entry.stamp) >= cutoff) continue;
        const std::string id = entry.name.substr(0, entry.name.size() - extension.size());
        if (keeping.contains(id)) continue;
        // A file that cannot be deleted now is tried again the next time.
        ::unlink(joinPath(directory, entry.name).c_str());
        for (const char* leftover : {".lock", ".new"})
            ::unlink(joinPath(directory, "../locks/" + id + leftover).c_str());
    }
}

}  // namespace fleetwise
