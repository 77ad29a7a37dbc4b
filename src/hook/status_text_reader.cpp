#include "hook/json_fields.h"
#include "hook/json_walk.h"
#include "hook/status_text.h"

namespace fleetwise::hook {

namespace {

template <typename Owner>
using TextField = JsonField<Owner, std::string_view>;
using TimeField = JsonField<StatusRecord, std::optional<double>>;

constexpr TextField<StatusRecord> textFields[] = {
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

constexpr TimeField timeFields[] = {
    {"decided_ts", &StatusRecord::decidedAt},
    {"state_ts", &StatusRecord::stateTs},
    {"turn_started_at", &StatusRecord::turnStartedAt},
    {"done_at", &StatusRecord::doneAt},
    {"wakeup_at", &StatusRecord::wakeupAt},
};

constexpr TextField<Request> requestFields[] = {
    {"agent", &Request::agent},
    {"tool", &Request::tool},
    {"activity", &Request::activity},
    {"message", &Request::message},
};

SessionState stateFrom(std::string_view name) {
    return sessionStateFrom(name).value_or(SessionState::unknown);
}

class StatusSink {
public:
    explicit StatusSink(StatusRecord& target) : record(target) {}

    void begin(const JsonPath& path) {
        if (path.size() != 2) return;
        if (path[0] == "background") launch = record.background.add({.id = path[1]});
        if (path[0] == "monitors") watch = record.monitors.add({.id = path[1]});
        if (path[0] == "requests") request = record.requests.add({});
    }

    void text(const JsonPath& path, std::string_view value) {
        if (path.size() == 1) takeText(path[0], value);
        if (path.is("subagent_ids", "")) record.subagents.add(value);
        if (path.size() != 3) return;
        if (path[0] == "background" && launch != nullptr && path[2] == "cmd") {
            launch->command = value;
        }
        if (path[0] == "monitors" && watch != nullptr) watch->label = value;
        if (path[0] == "requests" && request != nullptr) {
            assignField(requestFields, path[2], value, *request);
            if (path[2] == "state") request->state = stateFrom(value);
        }
    }

    void number(const JsonPath& path, double value) {
        if (path.size() == 1) assignField(timeFields, path[0], value, record);
        if (path.is("event_ts")) record.eventTs = value;
        if (path.size() != 3) return;
        if (path[0] == "background" && launch != nullptr && path[2] == "at") launch->at = value;
        if (path[0] == "monitors" && watch != nullptr) watch->since = value;
        if (path[0] == "requests" && request != nullptr && path[2] == "at") request->at = value;
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
    void takeText(std::string_view key, std::string_view value) {
        assignField(textFields, key, value, record);
        if (key == "state") shownState = stateFrom(value);
        if (key == "state_before") stateBefore = stateFrom(value);
        if (key == "message_before") messageBefore = value;
    }

    StatusRecord& record;
    SessionState shownState = SessionState::unknown;
    SessionState stateBefore = SessionState::working;
    std::string_view messageBefore;

    // What is being read; null where there was no room for it.
    Launch* launch = nullptr;
    Watch* watch = nullptr;
    Request* request = nullptr;
};

}  // namespace

bool readStatusText(std::span<char> text, StatusRecord& record) {
    StatusSink sink(record);
    if (!walkJsonInPlace(text.data(), sink)) return false;
    sink.finish();
    return true;
}

}  // namespace fleetwise::hook
