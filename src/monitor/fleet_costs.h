#pragma once

#include "cost/cost_store.h"
#include "cost/cost_sum.h"
#include "fleet/usage_days.h"
#include "foundation/main_loop.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Keeps what the sessions cost up to date: has the cost store look for news where there may be
/// some, and prices what it knows. Main thread only.
class FleetCosts {
public:
    struct Environment {
        MainLoop& loop;
        CostStore& store;
        Calendar calendar = nullptr;            ///< whose days are told
        std::function<void()> costsChanged;     ///< figures or prices differ
        std::function<void()> progressChanged;  ///< of a long scan
    };

    /// How long costs may be out of date where nobody says that something has happened.
    static constexpr Seconds longestRest{60};
    /// Between two scans at least, and up to longestRest after a long one: twenty times its length.
    static constexpr Seconds shortestRest{5};
    static constexpr double restPerWork = 20;
    /// From this length on a scan tells its progress.
    static constexpr Seconds longScan{0.5};
    /// How often the cache file is written while sessions go on.
    static constexpr Seconds savingInterval{60};

    explicit FleetCosts(Environment givenEnvironment);
    ~FleetCosts();
    FleetCosts(const FleetCosts&) = delete;
    FleetCosts& operator=(const FleetCosts&) = delete;

    enum class News { none, some };

    /// A pass over the fleet has ended. Where it brought news, costs are scanned soon.
    void followPass(News news, bool includesCodex);

    void setPriceBook(Prices::Book book);
    const Prices::Book& priceBook() const { return book; }

    /// Over sessions as they are listed: a Codex session stands also for its forks and subagents.
    /// What forks copied from each other counts once.
    CostFigures figures(const std::vector<std::string>& ids) const;

    /// By the price book, over all sessions, listed or not.
    CostFigures figuresOfToday() const;

    /// What all sessions used on each of the last `count` days, the oldest first.
    std::vector<UsageDay> usageDays(int count) const;

    /// What these sessions, and what all sessions used by model since a day; see CostSum::used.
    ModelTallies used(const std::vector<std::string>& ids, std::string_view firstDay) const {
        return sum.used(ids, firstDay);
    }
    ModelTallies used(std::string_view firstDay) const { return sum.used(firstDay); }

    /// Each session by itself; never null.
    std::shared_ptr<const SessionCosts> allCosts() const { return sessions; }

    /// One session by itself; nothing where it is not known yet.
    std::shared_ptr<const SessionCost> cost(const std::string& id) const;

    /// How the reports of all agents compare with the book.
    const std::optional<Prices::Verdict>& priceVerdict() const { return verdict; }

    /// Of a scan that takes long; nothing at other times.
    const std::optional<CostStore::Progress>& progress() const { return shownProgress; }

private:
    void scan(bool includesCodex);
    void finishScan();
    void adoptSessions();
    void showProgress();

    Environment environment;
    Prices::Book book;
    std::shared_ptr<const SessionCosts> sessions;
    CostSum sum;                                        ///< over them
    std::multimap<std::string, std::string> offspring;  ///< Codex thread to those it started
    std::optional<Prices::Verdict> verdict;
    std::optional<CostStore::Progress> shownProgress;
    bool isScanning = false;
    Date begun;
    Date nextScan;  ///< not before this
    Date ended;
    Date saved;
    bool hasNews = true;
    std::unique_ptr<MainLoop::Subscription> progressTimer;
    /// What follows a background job only happens while this exists.
    std::shared_ptr<bool> aliveToken = std::make_shared<bool>(true);
};

}  // namespace fleetwise
