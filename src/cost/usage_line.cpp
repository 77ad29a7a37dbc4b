#include "cost/usage_line.h"

#include "cost/record_walk.h"

#include <cmath>
#include <map>

namespace fleetwise {

namespace {

/// The members of a line that matter, gathered before its type is known.
struct Members {
    std::string_view type;
    std::optional<std::string_view> requestId;
    std::optional<std::string_view> effort;
    std::optional<std::string_view> timestamp;

    std::optional<std::string_view> messageId;
    std::string_view model;
    bool hasUsage = false;
    TokenTally tally;
    std::int64_t cacheCreation = 0;
    bool tellsLifetimes = false;

    std::optional<double> totalUSD;
    std::map<std::string, BilledSlice, std::less<>> billed;
};

std::optional<std::string_view> filledText(JsonValue value) {
    const auto text = textValue(value);
    return text && !text->empty() ? text : std::nullopt;
}

bool readLifetimes(JsonValue value, Members& members) {
    return walkObjectValue(value, [&](JsonKey key, JsonValue member) {
        if (key == "ephemeral_5m_input_tokens") members.tally.cacheWrite5m = tokenCount(member);
        if (key == "ephemeral_1h_input_tokens") members.tally.cacheWrite1h = tokenCount(member);
        return true;
    });
}

bool readOutputDetails(JsonValue value, Members& members) {
    return walkObjectValue(value, [&](JsonKey key, JsonValue member) {
        if (key == "thinking_tokens") members.tally.thinking = tokenCount(member);
        return true;
    });
}

bool isObject(JsonValue& value) {
    simdjson::ondemand::json_type type{};
    return !value.type().get(type) && type == simdjson::ondemand::json_type::object;
}

bool readUsageMember(JsonKey key, JsonValue value, Members& members) {
    if (key == "input_tokens") {
        members.tally.input = tokenCount(value);
    } else if (key == "output_tokens") {
        members.tally.output = tokenCount(value);
    } else if (key == "cache_read_input_tokens") {
        members.tally.cacheRead = tokenCount(value);
    } else if (key == "cache_creation_input_tokens") {
        members.cacheCreation = tokenCount(value);
    } else if (key == "output_tokens_details") {
        return readOutputDetails(value, members);
    } else if (key == "cache_creation") {
        members.tellsLifetimes = isObject(value);
        return readLifetimes(value, members);
    }
    return true;
}

bool readMessageMember(JsonKey key, JsonValue value, Members& members) {
    if (key == "id") {
        members.messageId = filledText(value);
    } else if (key == "model") {
        members.model = textValue(value).value_or("");
    } else if (key == "usage") {
        members.hasUsage = isObject(value);
        return walkObjectValue(value, [&](JsonKey name, JsonValue member) {
            return readUsageMember(name, member, members);
        });
    }
    return true;
}

bool readBilledMember(JsonKey key, JsonValue value, BilledSlice& slice) {
    if (key == "inputTokens") {
        slice.input = tokenCount(value);
    } else if (key == "outputTokens") {
        slice.output = tokenCount(value);
    } else if (key == "cacheReadInputTokens") {
        slice.cacheRead = tokenCount(value);
    } else if (key == "cacheCreationInputTokens") {
        slice.cacheCreation = tokenCount(value);
    } else if (key == "webSearchRequests") {
        slice.webSearchRequests = tokenCount(value);
    } else if (key == "costUSD") {
        slice.costUSD = scalarValue<double>(value).value_or(NAN);
    }
    return true;
}

/// {"claude-opus-5-5": {"inputTokens": 7, …, "costUSD": 0.01}, …}
bool readBilledModels(JsonValue value, Members& members) {
    if (!isObject(value)) return true;
    JsonObject models;
    if (value.get_object().get(models)) return false;
    for (auto next : models) {
        simdjson::ondemand::field entry;
        std::string_view model;
        if (std::move(next).get(entry) || entry.unescaped_key().get(model)) return false;
        BilledSlice slice{.model = std::string(model), .costUSD = NAN};
        const bool isWhole = walkObjectValue(entry.value(), [&](JsonKey key, JsonValue member) {
            return readBilledMember(key, member, slice);
        });
        if (!isWhole) return false;
        if (std::isfinite(slice.costUSD)) members.billed.insert_or_assign(slice.model, slice);
    }
    return true;
}

bool readMember(JsonKey key, JsonValue value, Members& members) {
    if (key == "message") {
        return walkObjectValue(value, [&](JsonKey name, JsonValue member) {
            return readMessageMember(name, member, members);
        });
    }
    if (key == "modelUsage") return readBilledModels(value, members);
    if (key == "type") {
        members.type = textValue(value).value_or("");
    } else if (key == "requestId") {
        members.requestId = filledText(value);
    } else if (key == "effort") {
        members.effort = filledText(value);
    } else if (key == "timestamp") {
        members.timestamp = filledText(value);
    } else if (key == "totalCostUSD") {
        members.totalUSD = scalarValue<double>(value);
    }
    return true;
}

UsageLine::Reply replyOf(const Members& members) {
    UsageLine::Reply reply{.key = members.requestId ? members.requestId : members.messageId,
                           .model = members.model,
                           .effort = members.effort,
                           .timestamp = members.timestamp,
                           .tally = members.tally};
    // A write of unstated lifetime is taken to be one for five minutes.
    if (!members.tellsLifetimes) reply.tally.cacheWrite5m = members.cacheCreation;
    return reply;
}

UsageLine::Bill billOf(Members& members) {
    UsageLine::Bill bill{.totalUSD = members.totalUSD, .models = {}};
    for (auto& [model, slice] : members.billed)
        bill.models.push_back(std::move(slice));
    return bill;
}

}  // namespace

UsageLine UsageLine::parse(JsonReader& json, std::string_view line) {
    Members members;
    bool isWhole = false;
    const bool isJson = json.walkObject(line, [&](JsonObject& object) {
        isWhole = forEachMember(
            object, [&](JsonKey key, JsonValue value) { return readMember(key, value, members); });
    });
    UsageLine read;
    if (!isJson || !isWhole) return read;
    if (members.type == "assistant" && members.hasUsage) read.reply = replyOf(members);
    if (members.type == "cost-state") read.bill = billOf(members);
    return read;
}

}  // namespace fleetwise
