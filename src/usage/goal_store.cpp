#include "usage/goal_store.h"

#include "foundation/directory.h"
#include "foundation/text.h"
#include "foundation/utf8.h"
#include "usage/read_only_database.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t displayedCharacters = 80;
constexpr std::size_t longestId = 200;

constexpr std::array<std::pair<std::string_view, GoalStore::Status>, 6> storedStatuses{
    {{"active", GoalStore::Status::active},
     {"paused", GoalStore::Status::paused},
     {"blocked", GoalStore::Status::blocked},
     {"usage_limited", GoalStore::Status::usageLimited},
     {"budget_limited", GoalStore::Status::budgetLimited},
     {"complete", GoalStore::Status::complete}}};

std::optional<FileStamp> stampAt(const std::string& path) {
    const auto found = inspectFile(path);
    if (!found || found->kind != FileKind::regular) return {};
    return found->stamp;
}

/// The latest goals first.
std::string goalQuery() {
    return "SELECT thread_id, substr(objective, 1, 1000), status, token_budget, tokens_used, "
           "time_used_seconds FROM thread_goals ORDER BY updated_at_ms DESC LIMIT " +
           std::to_string(GoalStore::mostGoals);
}

/// Nothing where a column that must be there holds something else.
std::optional<GoalStore::Goal> goalOf(const ReadOnlyDatabase::Row& row) {
    const auto id = row.text(0);
    const auto objective = row.text(1);
    const auto status = GoalStore::status(row.text(2).value_or(""));
    if (!id || id->empty() || id->size() > longestId || !objective || !status) return {};
    GoalStore::Goal goal{.sessionId = wellFormedUtf8(*id),
                         .objective = wellFormedUtf8(*objective),
                         .status = *status,
                         .tokensUsed = std::max<std::int64_t>(row.integer(4).value_or(0), 0),
                         .timeUsed = std::max(row.number(5).value_or(0), 0.0)};
    if (const auto budget = row.integer(3); budget && *budget > 0) goal.tokenBudget = budget;
    return goal;
}

GoalStore::Goals goalsIn(ReadOnlyDatabase& database) {
    GoalStore::Goals goals;
    const bool isWhole = database.query(goalQuery(), [&](const ReadOnlyDatabase::Row& row) {
        if (auto goal = goalOf(row)) goals.try_emplace(goal->sessionId, *std::move(goal));
    });
    return isWhole ? goals : GoalStore::Goals();
}

}  // namespace

std::string GoalStore::Goal::displayObjective() const {
    std::string line;
    for (const char character : printable(objective)) {
        const bool isRepeated = character == ' ' && (line.empty() || line.back() == ' ');
        if (!isRepeated) line += character;
    }
    return shortenedText(trimmed(line), displayedCharacters);
}

std::optional<double> GoalStore::Goal::share() const {
    if (!tokenBudget || *tokenBudget <= 0) return {};
    const double used = static_cast<double>(std::max<std::int64_t>(tokensUsed, 0));
    return std::min(used / static_cast<double>(*tokenBudget), 1.0);
}

std::optional<GoalStore::Status> GoalStore::status(std::string_view stored) {
    const auto* const found = std::ranges::find(
        storedStatuses, stored, &std::pair<std::string_view, GoalStore::Status>::first);
    if (found == storedStatuses.end()) return {};
    return found->second;
}

std::shared_ptr<const GoalStore::Goals> GoalStore::goals(const std::string& path) {
    const auto database = stampAt(path);
    const auto log = stampAt(path + "-wal");
    {
        const std::lock_guard guard(lock);
        if (known && path == knownPath && database == knownDatabase && log == knownLog) {
            return known;
        }
    }
    auto opened = ReadOnlyDatabase::open(path);
    // One that is missing or locked may be there the next time without having changed. While it is
    // written to, what was read last stands.
    if (!opened) {
        const std::lock_guard guard(lock);
        return database && known && path == knownPath ? known : std::make_shared<const Goals>();
    }
    auto read = std::make_shared<const Goals>(goalsIn(*opened));
    const std::lock_guard guard(lock);
    knownPath = path;
    knownDatabase = database;
    knownLog = log;
    known = read;
    return read;
}

}  // namespace fleetwise
