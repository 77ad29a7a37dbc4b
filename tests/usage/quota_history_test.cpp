// Derived windows at random moments of a history whose resets are known, against plain searches
// through all of it.

#include "quota_samples.h"
#include "usage/usage_history_store.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <random>

namespace fleetwise::testing {
namespace {

using Store = UsageHistoryStore;

/// Thirty days, measured every five minutes but for some nights.
struct History {
    UsageSamples samples;
    std::vector<Date> fiveHourStarts;  ///< each at the sample that shows it
    std::vector<Date> sevenDayResets;
};

History generated(unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&](unsigned count) { return static_cast<int>(random() % count); };
    History history;
    double fiveHour = 0;
    double sevenDay = 30;
    std::optional<Date> windowEnd;
    Date weekEnd = at(-28 * day + below(86'400));
    for (int step = 0; step <= 30 * 288; ++step) {
        const Date now = at(-30 * day + step * 300.0);
        const bool isNight = step % 288 < 84;
        if (isNight && step / 288 % 3 == 0) continue;
        if (windowEnd && now >= *windowEnd) {
            // A window that was hardly used does not show its end.
            if (std::floor(fiveHour) >= 10) history.fiveHourStarts.push_back(now);
            fiveHour = 0;
            windowEnd.reset();
        }
        if (now >= weekEnd) {
            sevenDay = 0;
            history.sevenDayResets.push_back(now);
            while (weekEnd <= now)
                weekEnd += sevenDays;
        }
        if (!isNight && below(3) > 0) {
            const double use = below(40) / 10.0;
            const bool stoodAtZero = std::floor(fiveHour) == 0;
            fiveHour += use;
            sevenDay += use / 8;
            if (!windowEnd && use > 0) windowEnd = now + fiveHours;
            const bool isSeen = !history.samples.empty() && history.samples.back().fiveHour == 0;
            if (stoodAtZero && fiveHour >= 1 && isSeen) history.fiveHourStarts.push_back(now);
        }
        history.samples.push_back(
            sample(now, static_cast<int>(fiveHour), static_cast<int>(sevenDay)));
    }
    return history;
}

std::optional<Date> latestBefore(const std::vector<Date>& dates, Date now) {
    std::optional<Date> latest;
    for (const Date date : dates) {
        if (date <= now) latest = date;
    }
    return latest;
}

/// Percent points that were used since midnight, sample by sample.
std::optional<int> usedSince(const UsageSamples& samples, Date midnight) {
    std::optional<int> before;
    int used = 0;
    for (const UsageSample& sample : samples) {
        if (before && sample.date >= midnight) {
            used += *sample.sevenDay >= *before ? *sample.sevenDay - *before : *sample.sevenDay;
        }
        before = sample.sevenDay;
    }
    const bool isComplete = samples.front().date < midnight && samples.back().date >= midnight;
    return isComplete ? std::optional(std::min(used, *before)) : std::nullopt;
}

TEST(QuotaHistory, derivedWindowsAreThoseThatTheHistoryWasMadeOf) {
    const Calendar calendar = ::date::locate_zone("Europe/Berlin");
    for (const unsigned seed : {1U, 2U, 3U, 4U}) {
        const History history = generated(seed);
        std::mt19937 random(seed);
        for (int round = 0; round < 50; ++round) {
            const Date now = at(-static_cast<double>(random() % (29 * 86'400)));
            SCOPED_TRACE(fmt::format("seed {}, {}", seed, internetDate(now)));
            UsageSamples known;
            for (const UsageSample& sample : history.samples) {
                if (sample.date <= now) known.push_back(sample);
            }
            const auto window = Store::fiveHourWindow(known, now, {}, calendar);
            ASSERT_TRUE(window);
            const auto start = latestBefore(history.fiveHourStarts, now);
            const bool isOpen = start && now - *start < fiveHours;
            EXPECT_EQ(window->windowEndsAt,
                      isOpen ? std::optional(*start + fiveHours) : std::nullopt);
            int peak = 0;
            for (const UsageSample& sample : known) {
                if (isOpen && sample.date >= *start) peak = std::max(peak, *sample.fiveHour);
            }
            if (isOpen) {
                EXPECT_EQ(window->peak, peak);
            }

            const auto week = Store::sevenDayWindow(known, now, calendar);
            ASSERT_TRUE(week);
            const auto reset = latestBefore(history.sevenDayResets, now);
            const bool hasRhythm = reset && *reset != history.sevenDayResets.front();
            ASSERT_EQ(week->resetsAt.has_value(), hasRhythm);
            EXPECT_EQ(week->isStale, now - known.back().date > Seconds(8.4 * hour));
            if (!hasRhythm) continue;
            Date next = *reset;
            while (next <= now)
                next += sevenDays;
            EXPECT_EQ(week->resetsAt, next);
            EXPECT_GT(*week->resetsAt, now);
            const Date since = next - sevenDays;
            if (week->projection) {
                EXPECT_GE(now - since, Seconds(21 * hour));
                EXPECT_GE(week->projection->percent, week->percent);
            }
            const Date midnight = startOfDay(localDay(now, calendar), calendar);
            const auto used = usedSince(known, midnight);
            // Where the window began at midnight itself, nothing of it was measured before.
            if (since > midnight - Seconds(600) && since <= midnight) continue;
            ASSERT_EQ(week->dailyBudget.has_value(), used && known.back().date >= since);
            if (!week->dailyBudget) continue;
            EXPECT_EQ(week->dailyBudget->usedToday, *used);
            EXPECT_GE(week->dailyBudget->perDay, 0);
        }
    }
}

TEST(QuotaHistory, staysFastWithManyAccountsAndResets) {
    // Two clusters of resets without a rhythm, in the hands of more accounts than are shown.
    UsageSamples samples;
    for (std::size_t index = 0; index < Store::mostSamples; ++index) {
        const double gap = index < Store::mostSamples / 2 ? 0 : 8.5 * day;
        samples.push_back(
            sample(at(static_cast<double>(index) * 0.1 + gap), 0, index % 2 == 0 ? 60 : 0));
        if (index < 40) samples.back().org = std::to_string(index);
    }
    const auto accounts =
        Store::konten(samples, at(12 * day), {}, Json(), ::date::locate_zone("Etc/UTC"));
    EXPECT_EQ(accounts.size(), Store::mostAccounts);
    EXPECT_FALSE(accounts.front().siebenTage->resetsAt);
}

}  // namespace
}  // namespace fleetwise::testing
