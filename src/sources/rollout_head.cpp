#include "sources/rollout_head.h"

#include "sources/plain_file_name.h"
#include "sources/rollout_item.h"
#include "sources/rollout_line.h"

namespace fleetwise {

namespace {

constexpr std::size_t longestId = 128;

std::optional<std::string> idMember(JsonObject& object, std::string_view key) {
    auto id = textMember(object, key);
    return id && id->size() <= longestId && isPlainFileName(*id) ? id : std::nullopt;
}

/// {"subagent": {"thread_spawn": {"parent_thread_id": …}}} or {"subagent": "review"}: what started
/// the thread, where that was not the user.
void readOrigin(JsonObject& source, RolloutHead& head) {
    JsonValue subagent;
    bool isNull = false;
    if (source.find_field_unordered("subagent").get(subagent) || subagent.is_null().get(isNull) ||
        isNull) {
        return;
    }
    head.kind = RolloutKind::subagent;
    auto object = readValue<JsonObject>(subagent).value_or(std::nullopt);
    auto spawn = object ? memberIfPresent<JsonObject>(*object, "thread_spawn") : std::nullopt;
    if (spawn) head.parentId = idMember(*spawn, "parent_thread_id");
}

/// A thread within another's session carries that session's id beside its own.
void readKind(JsonObject& payload, std::optional<std::string> session, RolloutHead& head) {
    const auto startedBy = textMember(payload, "thread_source");
    const auto parent = idMember(payload, "parent_thread_id");
    const auto forkedFrom = idMember(payload, "forked_from_id");
    if (session == head.sessionId) session.reset();
    const bool isFork = head.kind == RolloutKind::session && forkedFrom;
    const bool isWithin = head.kind == RolloutKind::session && session && !forkedFrom;
    if (isFork) head.kind = RolloutKind::fork;
    if (startedBy == "subagent" || startedBy == "memory_consolidation" || parent || isWithin) {
        head.kind = RolloutKind::subagent;
    }
    if (head.kind == RolloutKind::session) return;
    for (const auto& candidate : {parent, forkedFrom, session}) {
        if (!head.parentId) head.parentId = candidate;
    }
    if (head.parentId == head.sessionId) head.parentId.reset();
}

void readMeta(JsonObject& payload, RolloutHead& head) {
    auto session = idMember(payload, "session_id");
    head.sessionId = idMember(payload, "id");
    if (!head.sessionId) head.sessionId = session;
    head.cwd = textMember(payload, "cwd");
    if (const auto text = memberIfPresent<std::string_view>(payload, "timestamp")) {
        head.startedAt = parseInternetDate(*text);
    }
    head.originator = textMember(payload, "originator");
    head.source = textMember(payload, "source");
    if (auto source = memberIfPresent<JsonObject>(payload, "source")) readOrigin(*source, head);
    readKind(payload, std::move(session), head);
}

void readEvent(JsonObject& payload, RolloutHead& head) {
    const auto type = memberIfPresent<std::string_view>(payload, "type");
    if (type == "task_started" && !head.contextWindow) {
        head.contextWindow = contextWindowIn(payload);
    } else if (type == "user_message" && !head.firstPrompt) {
        head.firstPrompt = textMember(payload, "message");
    } else if (type == "item_completed" && !head.firstPrompt) {
        head.firstPrompt = RolloutItem::read(payload).prompt;
    }
}

bool namesMetaLine(std::string_view text) {
    return text.find("\"session_meta\"") != std::string_view::npos;
}

/// Makes `text` the file's first `size` bytes, with room for the parser's padding.
tl::expected<void, FileError> extend(const RegularFile& file, std::size_t size, std::string& text) {
    const std::size_t had = text.size();
    text.reserve(size + jsonPadding);
    text.resize(size);
    const auto got = file.read(had, {text.data() + had, size - had});
    if (!got) return tl::unexpected(got.error());
    text.resize(had + *got);
    return {};
}

}  // namespace

tl::expected<RolloutHead::Reading, FileError> RolloutHead::read(const RegularFile& file) {
    std::string text;
    if (const auto done = extend(file, window, text); !done) return tl::unexpected(done.error());
    Reading reading{.head = parse(text), .end = window};
    const std::size_t lastLine = text.rfind('\n') + 1;
    if (reading.head || !namesMetaLine(std::string_view(text).substr(lastLine))) return reading;
    // The window cuts the meta line, which is read to its end.
    while (reading.end < longestWindow) {
        reading.end += window;
        const std::size_t had = text.size();
        if (const auto done = extend(file, reading.end, text); !done) {
            return tl::unexpected(done.error());
        }
        if (text.size() < reading.end || text.find('\n', had) != std::string::npos) break;
    }
    reading.head = parse(text);
    return reading;
}

std::optional<RolloutHead> RolloutHead::parse(std::string_view padded) {
    std::optional<RolloutHead> head;
    JsonReader json;
    forEachRolloutLine(json, padded, [&](RolloutLine& line) {
        if (line.type == "session_meta") {
            if (!head) readMeta(line.payload, head.emplace());
        } else if (head && line.type == "event_msg") {
            readEvent(line.payload, *head);
        } else if (head && line.type == "turn_context" && !head->model) {
            head->model = textMember(line.payload, "model");
        }
    });
    return head;
}

}  // namespace fleetwise
