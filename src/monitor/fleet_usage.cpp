#include "monitor/fleet_usage.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace fleetwise {

namespace {

/// What is reckoned from the present moment moves a little with each pass: nobody is shown less
/// than a minute or a tenth of a point of it.
std::optional<Date> toTheMinute(std::optional<Date> date) {
    if (!date) return {};
    return std::chrono::floor<std::chrono::minutes>(*date);
}

double toTheTenth(double figure) {
    return std::round(figure * 10) / 10;
}

QuotaWindow asShown(QuotaWindow window) {
    if (window.ratePerHour) window.ratePerHour = toTheTenth(*window.ratePerHour);
    if (window.dailyBudget) window.dailyBudget->perDay = toTheTenth(window.dailyBudget->perDay);
    if (window.projection) {
        window.projection->exhaustedAt = toTheMinute(window.projection->exhaustedAt);
    }
    window.saturatesAt = toTheMinute(window.saturatesAt);
    return window;
}

std::optional<QuotaWindow> asShown(const std::optional<QuotaWindow>& window) {
    if (!window) return {};
    return asShown(*window);
}

UsageHistoryStore::Konto asShown(UsageHistoryStore::Konto account) {
    account.fuenfStunden = asShown(account.fuenfStunden);
    account.siebenTage = asShown(account.siebenTage);
    return account;
}

/// Whether a window of Codex has come to its end between the two moments, or its figure to age.
bool haveAged(const std::optional<CodexLimits>& limits, Date before, Date now) {
    return limits && std::ranges::any_of(limits->windows, [&](const CodexQuota& quota) {
               return quota.hasReset(before) != quota.hasReset(now) ||
                      quota.isStale(before) != quota.isStale(now);
           });
}

bool looksTheSame(const UsageOverview& left, const UsageOverview& right) {
    const auto areSame = [](const auto& one, const auto& other) {
        return one == other || *one == *other;
    };
    const auto accountsLookTheSame = [&] {
        return std::ranges::equal(
            left.accounts, right.accounts, {}, [](const auto& account) { return asShown(account); },
            [](const auto& account) { return asShown(account); });
    };
    return left.source == right.source && asShown(left.fiveHour) == asShown(right.fiveHour) &&
           asShown(left.sevenDay) == asShown(right.sevenDay) && accountsLookTheSame() &&
           left.codex == right.codex && !haveAged(left.codex, left.at, right.at) &&
           left.plans == right.plans && left.windowShares == right.windowShares &&
           areSame(left.codexGoals, right.codexGoals) && areSame(left.samples, right.samples);
}

}  // namespace

FleetUsage::FleetUsage(Environment givenEnvironment)
    : environment(givenEnvironment),
      own(environment.settings.get(Settings::ownGoals),
          [&settings = environment.settings](const Json& entries) {
              settings.set(Settings::ownGoals, entries);
          }) {}

FleetUsage::Input FleetUsage::input(const Prices::Book& book,
                                    const std::vector<Session>& sessions) const {
    const bool wantsShares = std::ranges::any_of(sessions, [&](const Session& session) {
        const auto entry = own.entries().find(session.id);
        return entry != own.entries().end() && entry->second.windowShareLimit;
    });
    return {.accountNames = environment.settings.get(Settings::accountNames),
            .wantsShares = wantsShares,
            .showsCodex = environment.settings.get(Settings::showsCodex),
            .book = book,
            .calendar = environment.calendar};
}

bool FleetUsage::mayNotify() const {
    return environment.settings.get(Settings::notificationsEnabled) &&
           !environment.settings.get(Settings::isMuted);
}

void FleetUsage::watchForReset(const UsageOverview& collected) {
    const UsageSamples& samples = *collected.samples;
    const auto org = UsageHistoryStore::primaryOrg(samples, collected.at);
    const auto values = UsageHistoryStore::fiveHourValues(UsageHistoryStore::samples(org, samples));
    // Also where nobody is told, so that a reset is not told late.
    const bool wasReset =
        resets.observe(values, org, collected.at, collected.toldFiveHourEnd).has_value();
    if (!wasReset) return;
    if (mayNotify() && environment.settings.get(Settings::notifiesWindowReset)) {
        environment.notifier.announceWindowReset();
    }
    if (!environment.settings.get(Settings::isMuted)) {
        environment.sounds.play(environment.settings.get(Settings::windowResetSound), collected.at);
    }
}

bool FleetUsage::adopt(UsageOverview collected) {
    if (collected.samples != current.samples) watchForReset(collected);
    const bool differs = !looksTheSame(current, collected);
    current = std::move(collected);
    return differs;
}

void FleetUsage::announceBreaches(
    const std::vector<Session>& sessions,
    const std::function<std::optional<double>(const std::string&)>& cost) {
    // What is reached meanwhile is told as soon as the user may be told again.
    if (own.entries().empty() || !mayNotify() || !environment.notifier.isAuthorized()) return;
    const auto overrides = environment.settings.notifyOverrides();
    const bool isDefault = environment.settings.get(Settings::newSessionsNotify);
    for (const Session& session : sessions) {
        if (!own.entries().contains(session.id)) continue;
        if (!NotificationPolicy::notifies(session, overrides, isDefault)) continue;
        const auto share = current.windowShares.find(session.id);
        const auto windowShare = share == current.windowShares.end()
                                     ? std::nullopt
                                     : std::optional<double>(share->second);
        const auto usd = cost(session.id);
        while (const auto breach = own.breachToAnnounce(session.id, usd, windowShare))
            environment.notifier.announceBreach(*breach, session);
    }
}

std::optional<GoalStore::Goal> FleetUsage::goal(const std::string& sessionId,
                                                std::int64_t tokensUsed) const {
    if (auto goal = own.goal(sessionId, tokensUsed, current.at)) return goal;
    const auto found = current.codexGoals->find(sessionId);
    if (found == current.codexGoals->end()) return {};
    return found->second;
}

}  // namespace fleetwise
