#include "hook/json_walk.h"
#include "hook/status_text.h"

#include <algorithm>

namespace fleetwise::hook {

namespace {

template <typename Field>
struct FieldKey {
    std::string_view key;
    Field StatusRecord::*field;
};

constexpr FieldKey<std::string_view> textKeys[] = {
    {"session_id", &StatusRecord::sessionId},
    {"event", &StatusRecord::event},
    {"agent", &StatusRecord::agent},
    {"tool", &StatusRecord::tool},
    {"activity", &StatusRecord::activity},
    {"message", &StatusRecord::message},
    {"cwd", &StatusRecord::cwd},
    {"permission_mode", &StatusRecord::permissionMode},
    {"error", &StatusRecord::error},
};

constexpr FieldKey<std::optional<double>> timeKeys[] = {
    {"decided_ts", &StatusRecord::decidedAt},
    {"state_ts", &StatusRecord::stateTs},
    {"turn_started_at", &StatusRecord::turnStartedAt},
    {"done_at", &StatusRecord::doneAt},
    {"wakeup_at", &StatusRecord::wakeupAt},
};

template <typename Field, std::size_t count>
void assign(const FieldKey<Field> (&keys)[count], const JsonPath& path, const auto& value,
            StatusRecord& record) {
    const auto known = std::find_if(std::begin(keys), std::end(keys),
                                    [&](const auto& entry) { return path.is(entry.key); });
    if (known != std::end(keys)) record.*known->field = value;
}

SessionState stateFrom(std::string_view name) {
    return sessionStateFrom(name).value_or(SessionState::unknown);
}

class StatusSink {
public:
    explicit StatusSink(StatusRecord& target) : record(target) {}

    void begin(const JsonPath& path) {
        if (path.size() != 2) return;
        if (path[0] == "background") record.background.add({.id = path[1]});
        if (path[0] == "monitors") record.monitors.add({.id = path[1]});
        if (path[0] == "requests") record.requests.add({});
    }

    void text(const JsonPath& path, std::string_view value) {
        assign(textKeys, path, value, record);
        if (path.is("state")) shownState = stateFrom(value);
        if (path.is("state_before")) stateBefore = stateFrom(value);
        if (path.is("message_before")) messageBefore = value;
        if (path.is("subagent_ids", "")) record.subagents.add(value);
        if (path.size() != 3) return;
        if (path[0] == "background" && path[2] == "cmd" && !record.background.isEmpty()) {
            record.background.all().back().command = value;
        }
        if (path[0] == "monitors" && !record.monitors.isEmpty()) {
            record.monitors.all().back().label = value;
        }
        if (path[0] == "requests" && !record.requests.isEmpty()) {
            takeRequestText(path[2], value, record.requests.all().back());
        }
    }

    void number(const JsonPath& path, double value) {
        assign(timeKeys, path, value, record);
        if (path.is("event_ts")) record.eventTs = value;
        if (path.size() != 3) return;
        if (path[0] == "background" && path[2] == "at" && !record.background.isEmpty()) {
            record.background.all().back().at = value;
        }
        if (path[0] == "monitors" && !record.monitors.isEmpty()) {
            record.monitors.all().back().since = value;
        }
        if (path[0] == "requests" && path[2] == "at" && !record.requests.isEmpty()) {
            record.requests.all().back().at = value;
        }
    }

    void truth(const JsonPath&, bool) {}

    /// Tells what is the session's own from what its requests show.
    void finish() {
        record.state = record.requests.isEmpty() ? shownState : stateBefore;
        if (record.requests.isEmpty()) return;
        record.message = messageBefore;
        record.stateTs = record.decidedAt;
    }

private:
    static void takeRequestText(std::string_view key, std::string_view value, Request& request) {
        if (key == "agent") request.agent = value;
        if (key == "tool") request.tool = value;
        if (key == "activity") request.activity = value;
        if (key == "message") request.message = value;
        if (key == "state") request.state = stateFrom(value);
    }

    StatusRecord& record;
    SessionState shownState = SessionState::unknown;
    SessionState stateBefore = SessionState::working;
    std::string_view messageBefore;
};

}  // namespace

bool readStatusText(std::span<char> text, StatusRecord& record) {
    StatusSink sink(record);
    if (!walkJsonInPlace(text.data(), sink)) return false;
    sink.finish();
    return true;
}

}  // namespace fleetwise::hook
