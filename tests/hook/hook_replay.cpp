#include "hook_replay.h"

#include "foundation/json_reader.h"
#include "foundation/text.h"
#include "hook/hook_event_reader.h"
#include "hook/parser_padding.h"
#include "hook/state_rules.h"
#include "hook/status_text.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <vector>

namespace fleetwise::testing {

void HookReplay::apply(std::string_view event, const std::string& payload, double now) {
    std::string text = payload + std::string(hook::parserPadding, '\0');
    hook::HookEvent read{.name = event};
    ASSERT_TRUE(hook::readHookEvent(std::span(text).first(payload.size()), read)) << payload;
    std::string& file = files[std::string(read.sessionId)];
    std::string before = file + std::string(hook::parserPadding, '\0');
    std::optional<hook::StatusRecord> old;
    if (!file.empty()) {
        ASSERT_TRUE(hook::readStatusText(std::span(before).first(file.size()), old.emplace()));
    }
    const auto record = hook::recordAfter(old, read, now);
    if (!record) return;
    std::vector<char> space(hook::statusTextLimit);
    file = hook::writeStatusText(*record, space);
}

std::optional<StatusStore::Record> HookReplay::record(const std::string& sessionId) const {
    const auto found = files.find(sessionId);
    if (found == files.end() || found->second.empty()) return {};
    std::string padded = found->second;
    padded.reserve(padded.size() + jsonPadding);
    return StatusStore::decode(padded);
}

std::string HookReplay::describe(const std::string& sessionId) const {
    const auto found = record(sessionId);
    if (!found) return "no file";
    const SessionState state =
        StatusStore::repairedState(found->state, found->event, found->subagents);
    std::string line = fmt::format("{} {}", rawValue(state), found->subagents.value_or(-1));
    const auto add = [&](std::string_view name, const std::optional<std::string>& text) {
        if (text) line += fmt::format(" | {}: {}", name, printable(*text));
    };
    add("says", found->message);
    add("tool", found->tool);
    add("does", found->activity);
    for (const auto& [id, launch] : found->background)
        line += fmt::format(" | runs: {}", launch.cmd.value_or("?"));
    for (const auto& watch : StatusStore::watches(&*found))
        line += fmt::format(" | watches: {} {:.1f}", watch.label, secondsSince1970(watch.since));
    if (found->wakeupAt)
        line += fmt::format(" | wakes: {:.1f}", secondsSince1970(*found->wakeupAt));
    return line;
}

}  // namespace fleetwise::testing
