#include "sources/rollout_tail.h"

#include "foundation/saturating.h"
#include "sources/codex_store.h"
#include "sources/rollout_item.h"
#include "sources/rollout_line.h"

#include <algorithm>

namespace fleetwise {

namespace {

template <typename Value>
void replace(std::optional<Value>& value, std::optional<Value> later) {
    if (later) value = std::move(later);
}

std::int64_t tokens(JsonObject& usage, std::string_view key) {
    return std::max<std::int64_t>(0, memberIfPresent<std::int64_t>(usage, key).value_or(0));
}

/// The tokens of one request; older agents give no total.
std::int64_t totalTokens(JsonObject& usage) {
    if (const std::int64_t total = tokens(usage, "total_tokens"); total > 0) return total;
    return saturatingSum(tokens(usage, "input_tokens"), tokens(usage, "output_tokens"));
}

void readTokenCount(JsonObject& payload, RolloutTail& tail) {
    auto info = memberIfPresent<JsonObject>(payload, "info");
    if (!info) return;
    if (auto total = memberIfPresent<JsonObject>(*info, "total_token_usage")) {
        tail.outputTokens = tokens(*total, "output_tokens");
    }
    if (auto last = memberIfPresent<JsonObject>(*info, "last_token_usage")) {
        tail.contextTokens = totalTokens(*last);
    }
    if (const auto window = contextWindowIn(*info)) tail.contextWindow = window;
}

/// Today's agents give an object, or null where the turn went well.
void readError(JsonObject& payload, RolloutTail& tail) {
    auto error = readMember<JsonObject>(payload, "error");
    const bool isAbsent = error && !*error;
    if (isAbsent) return;
    tail.state = SessionState::failed;
    tail.failure = error ? textMember(**error, "message") : textMember(payload, "error");
}

void readTaskEvent(SessionState state, std::optional<Date> at, JsonObject& payload,
                   RolloutTail& tail) {
    tail.state = state;
    tail.stateSince = at;
    tail.failure.reset();
    tail.activity.reset();
    if (state == SessionState::working) {
        if (at) tail.turnStartedAt = at;
        if (const auto window = contextWindowIn(payload)) tail.contextWindow = window;
    } else if (state == SessionState::failed) {
        tail.failure = textMember(payload, "message");
    } else if (state == SessionState::done) {
        if (auto reply = textMember(payload, "last_agent_message")) tail.lastReply = reply;
        readError(payload, tail);
    }
}

void readEvent(const RolloutLine& line, RolloutTail& tail) {
    const auto at = parseInternetDate(line.timestamp);
    if (at) tail.lastEventAt = at;
    const auto type = memberIfPresent<std::string_view>(line.payload, "type");
    if (!type) return;
    if (*type == "token_count") {
        readTokenCount(line.payload, tail);
    } else if (*type == "item_completed") {
        replace(tail.activity, RolloutItem::read(line.payload).activity);
    } else if (const auto state = CodexStore::state(*type)) {
        readTaskEvent(*state, at, line.payload, tail);
    }
}

/// Puts the `bytes` of the file that stand before `offset` in front of `text`.
tl::expected<void, FileError> prepend(const RegularFile& file, std::uint64_t offset,
                                      std::uint64_t bytes, std::string& text) {
    std::string longer;
    longer.reserve(bytes + text.size() + jsonPadding);
    longer.resize(bytes);
    const auto got = file.read(offset - bytes, longer);
    if (!got) return tl::unexpected(got.error());
    longer.resize(*got);
    longer += text;
    text = std::move(longer);
    return {};
}

}  // namespace

tl::expected<RolloutTail::Reading, FileError> RolloutTail::read(const RegularFile& file,
                                                                std::uint64_t begin) {
    const auto size = static_cast<std::uint64_t>(file.stamp().sizeBytes);
    Reading reading{.tail = {}, .nextLine = begin};
    RolloutTail& tail = reading.tail;
    std::string text;  // from `offset` on to the end of a line whose beginning is not read yet
    std::uint64_t offset = size;
    while (!tail.state && offset > begin && size - offset < longestSearch) {
        const std::uint64_t bytes = std::min(window, offset - begin);
        if (const auto done = prepend(file, offset, bytes, text); !done) {
            return tl::unexpected(done.error());
        }
        offset -= bytes;
        if (const std::size_t end = text.rfind('\n'); end != std::string::npos) {
            reading.nextLine = std::max(reading.nextLine, offset + end + 1);
        }
        const std::size_t cut = offset == begin ? std::string::npos : text.find('\n');
        if (cut == std::string::npos && offset > begin) continue;
        const std::size_t firstLine = cut == std::string::npos ? 0 : cut + 1;
        tail = parse(std::string_view(text).substr(firstLine)).followedBy(std::move(tail));
        text.resize(firstLine);
    }
    return reading;
}

RolloutTail RolloutTail::parse(std::string_view padded) {
    RolloutTail tail;
    JsonReader json;
    forEachRolloutLine(json, padded, [&](const RolloutLine& line) {
        if (line.type == "event_msg") {
            readEvent(line, tail);
        } else if (line.type == "turn_context") {
            replace(tail.model, textMember(line.payload, "model"));
            replace(tail.effort, textMember(line.payload, "effort"));
        }
    });
    return tail;
}

RolloutTail RolloutTail::followedBy(RolloutTail later) const {
    RolloutTail both = *this;
    if (later.state) {
        both.state = later.state;
        both.stateSince = later.stateSince;
        both.failure = std::move(later.failure);
        both.activity.reset();
    }
    replace(both.turnStartedAt, later.turnStartedAt);
    replace(both.lastEventAt, later.lastEventAt);
    replace(both.contextTokens, later.contextTokens);
    replace(both.outputTokens, later.outputTokens);
    replace(both.contextWindow, later.contextWindow);
    replace(both.activity, std::move(later.activity));
    replace(both.model, std::move(later.model));
    replace(both.effort, std::move(later.effort));
    replace(both.lastReply, std::move(later.lastReply));
    return both;
}

}  // namespace fleetwise
