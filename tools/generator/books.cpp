#include "generator/books.h"

namespace fleetwise::generator {

namespace {

Json optionalText(const std::optional<std::string>& text) {
    return text ? Json(*text) : Json(nullptr);
}

Json encodeUsage(const Usage& usage) {
    return {{"requests", usage.requests},
            {"input", usage.input},
            {"output", usage.output},
            {"thinking", usage.thinking},
            {"cacheRead", usage.cacheRead},
            {"cacheWrite5m", usage.cacheWrite5m},
            {"cacheWrite1h", usage.cacheWrite1h}};
}

Json encodeUsages(const std::map<std::string, Usage>& usageByModel) {
    Json encoded = Json::object();
    for (const auto& [model, used] : usageByModel)
        encoded[model] = encodeUsage(used);
    return encoded;
}

Json encodeDesktop(const std::optional<DesktopBook>& book) {
    if (!book) return nullptr;
    return {{"path", book->path},
            {"title", book->title},
            {"isArchived", book->isArchived},
            {"error", optionalText(book->error)}};
}

std::string_view nameOf(RolloutKind kind) {
    switch (kind) {
        case RolloutKind::subagent:
            return "subagent";
        case RolloutKind::fork:
            return "fork";
        case RolloutKind::session:
            break;
    }
    return "session";
}

Json encodeSession(const SessionBook& book) {
    return {{"id", book.id},
            {"cwd", book.cwd},
            {"projectFolder", book.projectFolder},
            {"transcriptPath", book.transcriptPath},
            {"transcriptBytes", book.transcriptBytes},
            {"isLive", book.isLive},
            {"state", book.state},
            {"entrypoint", book.entrypoint},
            {"startedAt", secondsSince1970(book.startedAt)},
            {"lastActivityAt", secondsSince1970(book.lastActivityAt)},
            {"assistantTurns", book.assistantTurns},
            {"toolCalls", book.toolCalls},
            {"contextTokens", book.contextTokens},
            {"outputTokens", book.outputTokens},
            {"thinkingTokens", book.thinkingTokens},
            {"model", book.model},
            {"lastReply", book.lastReply},
            {"lastPrompt", book.lastPrompt},
            {"permissionMode", book.permissionMode},
            {"title", optionalText(book.title)},
            {"name", optionalText(book.name)},
            {"lastTurnOrigin", optionalText(book.lastTurnOrigin)},
            {"gitBranch", optionalText(book.gitBranch)},
            {"tasks", book.tasks},
            {"tasksCompleted", book.tasksCompleted},
            {"usageByModel", encodeUsages(book.usageByModel)},
            {"subagentUsageByModel", encodeUsages(book.subagentUsageByModel)},
            {"forkedFrom", optionalText(book.forkedFrom)},
            {"inheritedRequests", book.inheritedRequests},
            {"inheritedUsageByModel", encodeUsages(book.inheritedUsageByModel)},
            {"billedUSD", book.billedUSD},
            {"desktop", encodeDesktop(book.desktop)}};
}

Json encodeRollout(const RolloutBook& book) {
    return {{"id", book.id},
            {"kind", nameOf(book.kind)},
            {"parentId", book.parentId},
            {"nickname", book.nickname},
            {"path", book.path},
            {"cwd", book.cwd},
            {"state", book.state},
            {"model", book.model},
            {"originator", book.originator},
            {"source", book.source},
            {"title", optionalText(book.title)},
            {"startedAt", secondsSince1970(book.startedAt)},
            {"lastEventAt", secondsSince1970(book.lastEventAt)},
            {"contextWindow", book.contextWindow},
            {"lastInputTokens", book.lastInputTokens},
            {"inputTokens", book.inputTokens},
            {"cachedInputTokens", book.cachedInputTokens},
            {"cacheWriteTokens", book.cacheWriteTokens},
            {"outputTokens", book.outputTokens},
            {"reasoningTokens", book.reasoningTokens}};
}

}  // namespace

Json encodeBooks(const Books& books) {
    Json sessions = Json::array();
    for (const SessionBook& book : books.sessions)
        sessions.push_back(encodeSession(book));
    Json rollouts = Json::array();
    for (const RolloutBook& book : books.rollouts)
        rollouts.push_back(encodeRollout(book));
    return {{"sessions", std::move(sessions)},
            {"rollouts", std::move(rollouts)},
            {"compressedRollouts", books.compressedRollouts},
            {"transcriptBytes", books.transcriptBytes},
            {"rolloutBytes", books.rolloutBytes}};
}

}  // namespace fleetwise::generator
