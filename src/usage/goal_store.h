#pragma once

#include "foundation/date.h"
#include "foundation/file_stamp.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// The goals that Codex keeps per thread in ~/.codex/goals_1.sqlite, table `thread_goals`. The
/// database is never changed, nor is a file put beside it. Any thread.
class GoalStore {
public:
    enum class Status { active, paused, blocked, usageLimited, budgetLimited, complete };

    struct Goal {
        std::string sessionId;  ///< the Codex thread
        std::string objective;  ///< as written; see displayObjective
        Status status = Status::active;
        std::optional<std::int64_t> tokenBudget;
        std::int64_t tokensUsed = 0;
        double timeUsed = 0;  ///< seconds
        bool isOwn = false;   ///< the user's own goal, not one of Codex's

        bool operator==(const Goal&) const = default;

        /// Without blanks around it, on one line, cut to 80 characters; "" where it is blank.
        std::string displayObjective() const;

        /// Share of the token budget, 0 … 1; nothing without a budget.
        std::optional<double> share() const;
    };

    using Goals = std::map<std::string, Goal>;  ///< by session id

    static constexpr std::size_t mostGoals = 10'000;

    /// From the stored text; nothing for one that is not known.
    static std::optional<Status> status(std::string_view stored);

    /// Empty where the database is missing, locked, foreign or damaged. Read again only where the
    /// database or its write-ahead log has changed.
    std::shared_ptr<const Goals> goals(const std::string& path);

private:
    std::mutex lock;
    std::string knownPath;
    std::optional<FileStamp> knownDatabase;
    std::optional<FileStamp> knownLog;
    std::shared_ptr<const Goals> known;
};

}  // namespace fleetwise
