#include "generator/rollout_format.h"

#include <fmt/format.h>

namespace fleetwise::generator {

namespace {

/// Enough to break off in the middle of the parent's first turn.
constexpr int longestInheritance = 8;

constexpr std::string_view beforeTimestamp = R"({"timestamp":")";

std::string_view timestampOf(std::string_view line) {
    constexpr std::size_t length = std::string_view("2026-11-21T02:05:29.783Z").size();
    return line.substr(beforeTimestamp.size(), length);
}

std::string sourceOf(const RolloutBook& book) {
    if (book.kind != RolloutKind::subagent) return encodeJson(Json(book.source));
    return fmt::format(R"({{"subagent":{{"thread_spawn":{{"parent_thread_id":"{}","depth":1,)"
                       R"("agent_nickname":"{}"}}}}}})",
                       book.parentId, book.nickname);
}

}  // namespace

std::string rolloutPath(const std::string& codexFolder, const RolloutBook& book,
                        Calendar calendar) {
    return fmt::format("{}/sessions/{}-{}.jsonl", codexFolder,
                       formatDate(book.startedAt, calendar, "%Y/%m/%d/rollout-%Y-%m-%dT%H-%M-%S"),
                       book.id);
}

std::string rolloutLineHead(Date time, int ordinal, std::string_view type) {
    return fmt::format(R"({}{}","ordinal":{},"type":"{}","payload":)", beforeTimestamp,
                       internetDate(time), ordinal, type);
}

std::string sessionMetaPayload(const RolloutBook& book, std::string_view instructions) {
    return fmt::format(
        R"({{"session_id":"{0}","id":"{0}",{1}"timestamp":"{2}","cwd":{3},"originator":"{4}",)"
        R"("cli_version":"0.169.0","source":{5},"thread_source":"{6}",)"
        R"("base_instructions":{{"text":"{7}"}}}})",
        book.id,
        book.parentId.empty() ? "" : fmt::format(R"("forked_from_id":"{}",)", book.parentId),
        internetDate(book.startedAt), encodeJson(Json(book.cwd)), book.originator, sourceOf(book),
        book.kind == RolloutKind::subagent ? "subagent" : "user", instructions);
}

std::string_view inheritedBySubagent(std::string_view parentRollout, Date time) {
    const std::string latest = internetDate(time);
    std::size_t end = 0;
    for (int lines = 0; lines < longestInheritance; ++lines) {
        const auto feed = parentRollout.find('\n', end);
        if (feed == std::string_view::npos || timestampOf(parentRollout.substr(end)) > latest)
            break;
        end = feed + 1;
    }
    return parentRollout.substr(0, end);
}

std::string renamingLine(const RolloutBook& book, std::string_view name) {
    const Json renaming{
        {"id", book.id}, {"thread_name", name}, {"updated_at", internetDate(book.lastEventAt)}};
    return encodeJson(renaming) + "\n";
}

}  // namespace fleetwise::generator
