#include "demo/codex_scenes.h"

namespace fleetwise::demo {

namespace {

CodexStep bySubagent(CodexMove move, std::string_view text) {
    return {move, text, 0, CodexDoer::subagent};
}

CodexScene sendsOutAnAgent() {
    using enum CodexMove;
    return {{begins, "Find out why the orders page has become slow."},
            {thinks, "The page asks the database; its log comes first."},
            {runs, "tail -n 500 log/queries.log"},
            {receives, "SELECT * FROM orders … 1840 ms"},
            {delegates, "Measure the page with and without the new filter."},
            bySubagent(begins, "Measure the page with and without the new filter."),
            bySubagent(runs, "scripts/measure orders --filter=off"),
            bySubagent(receives, "p50 95 ms"),
            bySubagent(runs, "scripts/measure orders --filter=on"),
            bySubagent(receives, "p50 1912 ms"),
            bySubagent(answers, "The filter takes the page from 95 to 1912 ms."),
            {receives, "The filter takes the page from 95 to 1912 ms."},
            {runs, "psql -c 'CREATE INDEX ON orders (state, created_at)'"},
            {receives, "CREATE INDEX"},
            {answers, "The filter had no index. The page answers in 98 ms again.", 3}};
}

CodexScene isInterrupted() {
    using enum CodexMove;
    return {{begins, "Update all dependencies."},
            {runs, "npm outdated"},
            {receives, "11 packages"},
            {runs, "npm update"},
            {CodexMove::isInterrupted, "", 3},
            {begins, "Only those with security fixes, please."},
            {runs, "npm audit fix"},
            {receives, "fixed 2 vulnerabilities"},
            {answers, "Two packages are updated; the tests pass.", 2}};
}

CodexScene isRefusedByTheService() {
    using enum CodexMove;
    return {{begins, "Write the release notes since version 3.1."},
            {runs, "git log --oneline v3.1.."},
            {receives, "64 commits"},
            {fails, "The service is overloaded.", 3},
            {begins, "Try again."},
            {thinks, "The commits fall into four groups."},
            {answers, "The release notes are in docs/releases/3.2.md.", 2}};
}

}  // namespace

const std::vector<CodexScene>& codexScenes() {
    static const std::vector<CodexScene> all{sendsOutAnAgent(), isInterrupted(),
                                             isRefusedByTheService()};
    return all;
}

}  // namespace fleetwise::demo
