#include "cost/cost_cache.h"

#include "foundation/json.h"

#include <simdjson.h>

#include <type_traits>

namespace fleetwise {

namespace {

constexpr std::int64_t formatVersion = 1;
constexpr double secondsFrom1970To2001 = 978'307'200;

using Element = simdjson::dom::element;
using Object = simdjson::dom::object;
using Array = simdjson::dom::array;
using Days = std::map<std::string, ModelTallies, std::less<>>;

/// The members of a structure under the names that they are stored by.
template <typename Tally, typename Visit>
void forEachCount(Tally& tally,
                  Visit&& visit) requires std::is_same_v<std::remove_const_t<Tally>, TokenTally> {
    visit("input", tally.input);
    visit("output", tally.output);
    visit("thinking", tally.thinking);
    visit("cacheRead", tally.cacheRead);
    visit("cacheWrite5m", tally.cacheWrite5m);
    visit("cacheWrite1h", tally.cacheWrite1h);
    visit("cacheWriteUnknown", tally.cacheWriteUnknown);
}

template <typename Slice, typename Visit>
void forEachCount(Slice& slice,
                  Visit&& visit) requires std::is_same_v<std::remove_const_t<Slice>, BilledSlice> {
    visit("input", slice.input);
    visit("output", slice.output);
    visit("cacheRead", slice.cacheRead);
    visit("cacheCreation", slice.cacheCreation);
    visit("webSearchRequests", slice.webSearchRequests);
}

template <typename Counts>
Json encodeCounts(const Counts& counts) {
    Json object = Json::object();
    forEachCount(counts, [&](const char* key, std::int64_t count) { object[key] = count; });
    return object;
}

template <typename Value>
void put(Json& object, const char* key, const std::optional<Value>& value) {
    if (value) object[key] = *value;
}

Json encode(const ModelSlices& slices) {
    Json object = Json::object();
    for (const auto& [model, slice] : slices) {
        object[model] = {{"tally", encodeCounts(slice.tally)},
                         {"efforts", Json(slice.efforts)},
                         {"requests", slice.requests}};
    }
    return object;
}

/// A tally as a list, in the order of its members: days have many.
Json encode(const Days& days) {
    Json object = Json::object();
    for (const auto& [day, tallies] : days) {
        for (const auto& [model, tally] : tallies) {
            Json& list = object[day][model] = Json::array();
            forEachCount(tally, [&](const char*, std::int64_t count) { list.push_back(count); });
        }
    }
    return object;
}

Json encode(const std::vector<BilledSlice>& slices) {
    Json list = Json::array();
    for (const BilledSlice& slice : slices) {
        list.push_back(encodeCounts(slice));
        list.back().update({{"model", slice.model}, {"costUSD", slice.costUSD}});
    }
    return list;
}

Json encode(const std::vector<Beginning>& beginnings) {
    Json list = Json::array();
    for (const Beginning& beginning : beginnings) {
        list.push_back({{"requests", beginning.requests},
                        {"byModel", encode(beginning.usage.byModel)},
                        {"days", encode(beginning.usage.days)}});
        put(list.back(), "billedUSD", beginning.billedUSD);
    }
    return list;
}

Json encode(const SessionCost& session) {
    Json object{{"agent", session.agent.rawValue()},
                {"byModel", encode(session.usage.byModel)},
                {"billedModels", encode(session.billedModels)},
                {"days", encode(session.usage.days)}};
    put(object, "billedUSD", session.billedUSD);
    put(object, "lastModel", session.lastModel);
    put(object, "lastEffort", session.lastEffort);
    put(object, "startedBy", session.startedBy);
    if (session.trail.size() == 0) return object;
    object["family"] = session.family;
    object["trail"] = session.trail.text();
    if (!session.beginnings.empty()) object["beginnings"] = encode(session.beginnings);
    return object;
}

// The library throws on what does not fit; decodeCostCache() catches it.

template <typename Value>
Value valueOf(Element element) {
    return element.get<Value>().value();
}

template <typename Value>
Value required(Object object, std::string_view key) {
    return valueOf<Value>(object[key].value());
}

std::string text(Object object, std::string_view key) {
    return std::string(required<std::string_view>(object, key));
}

/// What is absent stays as it is.
template <typename Stored, typename Value>
void take(Object object, std::string_view key, std::optional<Value>& value) {
    Element element;
    if (!object[key].get(element)) value = Value(valueOf<Stored>(element));
}

template <typename Counts>
void decodeCounts(Object object, Counts& counts) {
    forEachCount(counts, [&](const char* key, std::int64_t& count) {
        count = required<std::int64_t>(object, key);
    });
}

TokenTally decodeList(Array list) {
    TokenTally tally;
    std::size_t index = 0;
    forEachCount(tally, [&](const char*, std::int64_t& count) {
        count = valueOf<std::int64_t>(list.at(index++).value());
    });
    return tally;
}

ModelSlices decodeSlices(Object models) {
    ModelSlices slices;
    for (const auto [model, value] : models) {
        const auto object = valueOf<Object>(value);
        ModelSlice& slice = slices[std::string(model)];
        decodeCounts(required<Object>(object, "tally"), slice.tally);
        slice.requests = required<std::int64_t>(object, "requests");
        for (const auto [effort, requests] : required<Object>(object, "efforts"))
            slice.efforts[std::string(effort)] = valueOf<std::int64_t>(requests);
    }
    return slices;
}

Days decodeDays(Object object) {
    Days days;
    for (const auto [day, models] : object) {
        ModelTallies& tallies = days[std::string(day)];
        for (const auto [model, list] : valueOf<Object>(models))
            tallies[std::string(model)] = decodeList(valueOf<Array>(list));
    }
    return days;
}

std::vector<BilledSlice> decodeBilled(Array list) {
    std::vector<BilledSlice> slices;
    for (const Element element : list) {
        const auto object = valueOf<Object>(element);
        BilledSlice& slice = slices.emplace_back();
        slice.model = text(object, "model");
        slice.costUSD = required<double>(object, "costUSD");
        decodeCounts(object, slice);
    }
    return slices;
}

std::vector<Beginning> decodeBeginnings(Array list, const RequestTrail& trail) {
    std::vector<Beginning> beginnings;
    for (const Element element : list) {
        const auto object = valueOf<Object>(element);
        const auto requests = required<std::uint64_t>(object, "requests");
        if (requests == 0 || requests > trail.size()) continue;
        Beginning& beginning = beginnings.emplace_back();
        beginning.requests = static_cast<std::size_t>(requests);
        beginning.end = trail.end(beginning.requests);
        beginning.usage.byModel = decodeSlices(required<Object>(object, "byModel"));
        beginning.usage.days = decodeDays(required<Object>(object, "days"));
        take<double>(object, "billedUSD", beginning.billedUSD);
    }
    return beginnings;
}

/// Nothing in it where the file was written without.
void decodeTrail(Object object, SessionCost& session) {
    Element element;
    if (object["trail"].get(element)) return;
    auto trail = RequestTrail::fromText(valueOf<std::string_view>(element));
    if (!trail) throw simdjson::simdjson_error(simdjson::INCORRECT_TYPE);
    session.family = text(object, "family");
    session.trail = *std::move(trail);
    if (object["beginnings"].get(element)) return;
    session.beginnings = decodeBeginnings(valueOf<Array>(element), session.trail);
}

SessionCost decodeSession(Object object) {
    SessionCost session;
    session.agent = SessionAgent(required<std::string_view>(object, "agent"));
    session.usage.byModel = decodeSlices(required<Object>(object, "byModel"));
    session.billedModels = decodeBilled(required<Array>(object, "billedModels"));
    take<double>(object, "billedUSD", session.billedUSD);
    take<std::string_view>(object, "lastModel", session.lastModel);
    take<std::string_view>(object, "lastEffort", session.lastEffort);
    take<std::string_view>(object, "startedBy", session.startedBy);
    Element element;
    if (!object["days"].get(element)) session.usage.days = decodeDays(valueOf<Object>(element));
    decodeTrail(object, session);
    return session;
}

FileState decodeFile(Object object) {
    return {.size = required<std::uint64_t>(object, "size"),
            .modified = required<double>(object, "modified"),
            .sessionId = text(object, "sessionId")};
}

CostCache decode(Object document, std::string_view zone) {
    CostCache cache;
    std::optional<std::string> storedZone;
    take<std::string_view>(document, "zone", storedZone);
    for (const auto [id, value] : required<Object>(document, "sessions")) {
        auto session = std::make_shared<SessionCost>(decodeSession(valueOf<Object>(value)));
        if (storedZone != zone) session->beginnings.clear();
        cache.sessions.emplace(id, std::move(session));
    }
    for (const auto [path, value] : required<Object>(document, "files")) {
        FileState file = decodeFile(valueOf<Object>(value));
        const bool isUsable = storedZone == zone && cache.sessions.contains(file.sessionId);
        if (isUsable) cache.files.emplace(path, std::move(file));
    }
    return cache;
}

}  // namespace

FileState fileState(const FileStamp& stamp, std::string sessionId) {
    return {.size = static_cast<std::uint64_t>(stamp.sizeBytes),
            .modified = secondsSince1970(modificationDate(stamp)) - secondsFrom1970To2001,
            .sessionId = std::move(sessionId)};
}

std::string encodeCostCache(const CostCache& cache, std::string_view zone) {
    Json sessions = Json::object();
    for (const auto& [id, session] : cache.sessions)
        sessions[id] = encode(*session);
    Json files = Json::object();
    for (const auto& [path, file] : cache.files) {
        files[path] = {
            {"size", file.size}, {"modified", file.modified}, {"sessionId", file.sessionId}};
    }
    return encodeJson({{"version", formatVersion},
                       {"zone", zone},
                       {"files", std::move(files)},
                       {"sessions", std::move(sessions)}});
}

std::optional<CostCache> decodeCostCache(std::string_view text, std::string_view zone) {
    try {
        simdjson::dom::parser parser;
        const auto document = valueOf<Object>(parser.parse(text.data(), text.size()).value());
        if (required<std::int64_t>(document, "version") != formatVersion) return {};
        return decode(document, zone);
    } catch (const simdjson::simdjson_error&) {
        return {};
    }
}

}  // namespace fleetwise
