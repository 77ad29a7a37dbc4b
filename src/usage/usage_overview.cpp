#include "usage/usage_overview.h"

#include "usage/window_shares.h"

#include <utility>

namespace fleetwise {

namespace {

constexpr Seconds sharesInterval{60};

/// Whether the history has several accounts. What Claude Code was told says of none of them that it
/// is its own.
bool hasSeveralAccounts(const UsageSamples& history, Date now) {
    return UsageHistoryStore::orgs(history, now).size() > 1;
}

UsageOverview::Source sourceOf(const UsageSamples& history, const UsageSamples& merged) {
    using enum UsageOverview::Source;
    if (merged.empty()) return none;
    if (history.empty()) return claudeCode;
    return merged.size() > history.size() ? both : desktopApp;
}

}  // namespace

UsageOverview::UsageOverview()
    : samples(std::make_shared<const UsageSamples>()),
      codexGoals(std::make_shared<const GoalStore::Goals>()) {}

UsageCollector::UsageCollector(Places givenPlaces, UsageHistoryStore& givenHistory,
                               QuotaNotice& givenNotices)
    : places(std::move(givenPlaces)),
      history(givenHistory),
      notices(givenNotices),
      ownSamples(places.ownSamples) {}

UsageOverview UsageCollector::collect(const Input& input, Date now) {
    UsageOverview overview;
    overview.at = now;
    const ClaudeConfiguration claude = configuration.read(places.claudeConfiguration);
    merge(claude.utilization, now);
    overview.samples = merged;
    overview.source = sourceOf(*mergedHistory, *merged);
    const bool isOwnAccount = !hasSeveralAccounts(*mergedHistory, now);
    const ToldWindowEnds told = isOwnAccount ? claude.ends : ToldWindowEnds();
    deriveWindows(overview, input, told);
    overview.toldFiveHourEnd = told.fiveHour;
    if (input.showsCodex) {
        overview.codex = codexLimits.read(places.codexDirectory, now);
        overview.codexGoals = goals.goals(places.codexGoals);
    }
    overview.plans = PlanStore::plans(claude, overview.codex);
    shareOut(overview, input);
    return overview;
}

void UsageCollector::merge(const std::optional<UsageSample>& latest, Date now) {
    auto fromHistory = history.samples();
    auto own = ownSamples.add(latest, now);
    if (merged && fromHistory == mergedHistory && own == mergedOwn) return;
    if (own->empty() || hasSeveralAccounts(*fromHistory, now)) {
        merged = fromHistory;
    } else {
        merged = std::make_shared<const UsageSamples>(OwnSampleStore::merged(*fromHistory, *own));
    }
    mergedHistory = std::move(fromHistory);
    mergedOwn = std::move(own);
}

void UsageCollector::deriveWindows(UsageOverview& overview, const Input& input,
                                   const ToldWindowEnds& told) {
    const Date now = overview.at;
    const auto notice = notices.aktuelle(places.projectsDirectory, now, fiveHours);
    const UsageSamples inUse =
        UsageHistoryStore::samples(UsageHistoryStore::primaryOrg(*merged, now), *merged);
    overview.fiveHour = UsageHistoryStore::fiveHourWindow(inUse, now, notice, input.calendar, told);
    overview.sevenDay = UsageHistoryStore::sevenDayWindow(inUse, now, input.calendar, told);
    overview.accounts =
        UsageHistoryStore::konten(*merged, now, notice, input.accountNames, input.calendar, told);
}

void UsageCollector::shareOut(UsageOverview& overview, const Input& input) {
    const auto& window = overview.fiveHour;
    const Date now = overview.at;
    // A figure measured in the window before says nothing of this one.
    const bool isKnown = window && window->windowStartsAt && window->percent > 0 &&
                         window->measuredAt >= *window->windowStartsAt;
    if (!input.wantsShares || !isKnown) {
        sharesAt.reset();
        return;
    }
    const bool isFresh = sharesAt && sharesAt <= now && now - *sharesAt < sharesInterval &&
                         sharesStart == window->windowStartsAt;
    if (!isFresh) {
        sharesStart = window->windowStartsAt;
        shares = windowShares(places.projectsDirectory, *sharesStart, window->percent, input.book);
        sharesAt = now;
    }
    overview.windowShares = shares;
}

}  // namespace fleetwise
