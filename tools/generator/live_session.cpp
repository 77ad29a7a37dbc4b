#include "generator/live_session.h"

#include "generator/filler.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace fleetwise::generator {

namespace {

using Ending = TranscriptEnding;

constexpr std::array<Situation, 12> situations{{
    {"working", "working", "PreToolUse", "busy", "", "Bash", "", 0, Ending::toolPending},
    {"waiting", "waiting", "PermissionRequest", "waiting", "permission prompt", "Bash",
     "Bash: run the tests", 0, Ending::toolPending},
    {"done", "done", "Stop", "idle", "", "", "", 0, Ending::answered},
    {"decision", "decision", "PermissionRequest", "waiting", "input needed", "AskUserQuestion",
     "Which branch is meant?", 0, Ending::toolPending},
    {"idle", "idle", "SessionStart", "idle", "", "", "", 0, Ending::answered},
    {"waitingForSubagents", "working", "SubagentStart", "busy", "", "Agent", "", 2,
     Ending::toolPending},
    {"failed", "failed", "StopFailure", "idle", "", "", "API Error: Overloaded", 0, Ending::failed},
    {"compacting", "compacting", "PreCompact", "busy", "", "", "", 0, Ending::answered},
    {"scheduled", "done", "Stop", "idle", "", "", "", 0, Ending::answered},
    // No hook is installed: the registry alone tells.
    {"working", "", "", "busy", "", "Read", "", 0, Ending::toolPending},
    // The last subagent stopped, and nothing came after it.
    {"done", "working", "SubagentStop", "idle", "", "", "", 0, Ending::answered},
    // With a background command and a watch.
    {"working", "working", "PostToolUse", "busy", "", "Edit", "", 0, Ending::toolPending},
}};

double roundedMilliseconds(Date date) {
    return std::round(secondsSince1970(date) * 1000);
}

Json registryEntry(const SessionBook& book, const Situation& situation, const Plan& plan,
                   Random& random) {
    const auto started = static_cast<std::int64_t>(roundedMilliseconds(book.startedAt));
    // Older than the event, so that it never corrects what the record says.
    const auto updated =
        static_cast<std::int64_t>(roundedMilliseconds(book.lastActivityAt - Seconds(0.5)));
    Json entry{{"pid", plan.pid},
               {"sessionId", book.id},
               {"cwd", book.cwd},
               {"startedAt", started},
               {"version", "2.1.329"},
               {"peerProtocol", 1},
               {"kind", "interactive"},
               {"entrypoint", book.entrypoint},
               {"name", book.name.value_or(fmt::format("work-{}", random.hexadecimal(2)))},
               {"nameSource", book.name ? "user" : "derived"},
               {"nameSince", started},
               {"status", situation.registryStatus},
               {"updatedAt", updated},
               {"statusUpdatedAt", updated}};
    if (!situation.waitingFor.empty()) entry["waitingFor"] = situation.waitingFor;
    return entry;
}

Json statusRecord(const SessionBook& book, std::string_view state, std::string_view event) {
    return {{"session_id", book.id},
            {"agent", "claude"},
            {"state", state},
            {"event", event},
            {"cwd", book.cwd},
            {"permission_mode", book.permissionMode},
            {"ts", secondsSince1970(book.lastActivityAt)},
            {"event_ts", secondsSince1970(book.lastActivityAt)}};
}

Json liveRecord(const SessionBook& book, const Situation& situation, const Plan& plan,
                Random& random) {
    Json record = statusRecord(book, situation.recorded, situation.event);
    const double eventAt = secondsSince1970(book.lastActivityAt);
    if (situation.event != "SessionStart") {
        record["turn_started_at"] = eventAt - static_cast<double>(random.between(20, 200));
    }
    if (!situation.tool.empty()) {
        record["tool"] = situation.tool;
        record["activity"] = Filler::phrase(random, 5);
    }
    if (!situation.message.empty()) record["message"] = situation.message;
    if (situation.event == "Stop") record["done_at"] = eventAt;
    if (situation.event == "SubagentStart" || situation.event == "SubagentStop") {
        record["subagents"] = situation.subagents;
    }
    if (situation.event == "PostToolUse") {
        record["background"] = {{fmt::format("b{}", random.hexadecimal(8)),
                                 {{"cmd", "make watch"}, {"at", eventAt - 15}}}};
        record["monitors"] = {{fmt::format("toolu_01{}", random.hexadecimal(16)),
                               Json::array({"Pipeline", eventAt - 12})}};
    }
    if (situation.shown == "scheduled") record["wakeup_at"] = secondsSince1970(plan.now) + 3'600;
    return record;
}

}  // namespace

const Situation& situationOf(int index) {
    return situations[static_cast<std::size_t>(index) % situations.size()];
}

const Situation& failedSituation() {
    return *std::find_if(situations.begin(), situations.end(),
                         [](const Situation& situation) { return situation.shown == "failed"; });
}

tl::expected<void, GeneratorError> writeLiveSession(const SessionBook& book,
                                                    const Situation& situation,
                                                    const SessionFiles& files, const Plan& plan,
                                                    Random& random) {
    const std::string entry = encodeJson(registryEntry(book, situation, plan, random));
    auto registered = writeFile(files.registry, entry, book.lastActivityAt);
    if (!registered || situation.recorded.empty()) return registered;
    const std::string record = encodeJson(liveRecord(book, situation, plan, random));
    return writeFile(files.status, record, book.lastActivityAt);
}

tl::expected<void, GeneratorError> writeEndedSession(const SessionBook& book,
                                                     const SessionFiles& files) {
    const std::string record = encodeJson(statusRecord(book, "dormant", "SessionEnd"));
    return writeFile(files.status, record, book.lastActivityAt);
}

}  // namespace fleetwise::generator
