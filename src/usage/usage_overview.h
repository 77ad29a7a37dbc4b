#pragma once

#include "cost/prices.h"
#include "foundation/json.h"
#include "usage/codex_quota.h"
#include "usage/goal_store.h"
#include "usage/own_sample_store.h"
#include "usage/plan_store.h"
#include "usage/usage_history_store.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// What is known of quota, plans and Codex's goals at one moment. A value: it does not change.
struct UsageOverview {
    /// Whose figures the windows are derived from.
    enum class Source { none, desktopApp, claudeCode, both };

    Date at;
    Source source = Source::none;
    std::shared_ptr<const UsageSamples> samples;  ///< of all accounts, merged; never null
    std::optional<QuotaWindow> fiveHour;          ///< of the account in use
    std::optional<QuotaWindow> sevenDay;
    std::optional<Date> toldFiveHourEnd;             ///< by the server, to the account in use
    std::vector<UsageHistoryStore::Konto> accounts;  ///< empty where there are fewer than two
    std::optional<CodexLimits> codex;
    std::vector<PlanStore::Plan> plans;
    std::shared_ptr<const GoalStore::Goals> codexGoals;  ///< never null
    std::map<std::string, double> windowShares;  ///< by session id, percent; only those asked for

    UsageOverview();
};

/// The stores that an overview is put together from, and where they read.
class UsageCollector {
public:
    struct Places {
        std::string projectsDirectory;
        std::string codexDirectory;
        std::string claudeConfiguration;  ///< ~/.claude.json
        std::string ownSamples;           ///< usage-samples.json in the state folder
        std::string codexGoals;           ///< ~/.codex/goals_1.sqlite
    };

    struct Input {
        Json accountNames;         ///< the setting `accountNames`
        bool wantsShares = false;  ///< some own goal has a share limit
        bool showsCodex = true;
        Prices::Book book;  ///< that shares are weighed by
        Calendar calendar = nullptr;
    };

    UsageCollector(Places givenPlaces, UsageHistoryStore& givenHistory, QuotaNotice& givenNotices);

    /// Reads what has changed. One call at a time; not for the main thread.
    UsageOverview collect(const Input& input, Date now);

private:
    /// The samples of both sources by time.
    void merge(const std::optional<UsageSample>& latest, Date now);
    void deriveWindows(UsageOverview& overview, const Input& input, const ToldWindowEnds& told);
    void shareOut(UsageOverview& overview, const Input& input);

    const Places places;
    UsageHistoryStore& history;
    QuotaNotice& notices;
    ClaudeConfigurationReader configuration;
    OwnSampleStore ownSamples;
    CodexLimitsReader codexLimits;
    GoalStore goals;

    std::shared_ptr<const UsageSamples> mergedHistory;
    std::shared_ptr<const UsageSamples> mergedOwn;
    std::shared_ptr<const UsageSamples> merged;  ///< of these two
    std::optional<Date> sharesAt;
    std::optional<Date> sharesStart;  ///< of the window they are of
    std::map<std::string, double> shares;
};

}  // namespace fleetwise
