// fleetwise-hook EVENT < payload
//
// Run by the agent on each of its events. Whatever happens, it prints nothing, lets the agent go
// on soon, and ends with status 0.

#include "hook/fault_log.h"
#include "hook/hook_event_reader.h"
#include "hook/payload.h"
#include "hook/state_rules.h"
#include "hook/status_file.h"
#include "hook/status_text.h"

#include <sys/time.h>

#include <array>
#include <cstdlib>

namespace {

using namespace fleetwise::hook;
using fleetwise::SessionState;

constexpr std::chrono::seconds payloadPatience(10);

std::array<char, statusTextLimit + parserPadding> oldText;
std::array<char, statusTextLimit> newText;

/// The wall clock in seconds since 1970.
double currentTime() {
    ::timeval now{};
    ::gettimeofday(&now, nullptr);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) / 1e6;
}

/// Whether the record is in the file's place.
bool write(StatusFile& file, StatusRecord record) {
    std::string_view text = writeStatusText(record, newText);
    if (text.empty()) {
        // Only what others wrote into the file can be so large.
        record.subagents.clear();
        record.background.clear();
        record.monitors.clear();
        text = writeStatusText(record, newText);
    }
    return file.replace(text);
}

/// Brings the status file up to date with the event; whether that worked.
bool update(StatusFile& file, const HookEvent& event, double now) {
    std::optional<StatusRecord> old;
    const std::span<char> text = file.read(oldText);
    if (!text.empty() && !readStatusText(text, old.emplace())) old.reset();
    const auto record = recordAfter(old, event, now);
    const bool isUpToDate = !record || write(file, *record);
    const auto& latest = record ? record : old;
    if (latest && latest->state == SessionState::dormant) file.removeLock();
    return isUpToDate;
}

/// What went wrong with the event on standard input, if anything.
std::string_view handle(std::string_view eventName, double now) {
    Payload payload;
    if (!payload.read(payloadPatience)) return "the payload cannot be read";
    HookEvent event{.name = eventName};
    if (!readHookEvent(payload.bytes(), event)) return "the payload is not JSON";
    if (!isUsableSessionId(event.sessionId)) return "the session's id is missing or odd";
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home == '\0') return "HOME is not set";
    StatusFile file(home, event.sessionId);
    if (!file) return "the state folder cannot be opened";
    return update(file, event, now) ? std::string_view() : "the status file cannot be replaced";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const double now = currentTime();
    const std::string_view eventName = argumentCount > 1 ? arguments[1] : "";
    const std::string_view fault = handle(eventName, now);
    if (!fault.empty()) logFault(now, eventName, fault);
    return 0;
}
