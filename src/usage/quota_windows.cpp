// Puts the rules of quota_rules.cpp together to windows and accounts.

#include "foundation/text.h"
#include "localisation/localisation.h"
#include "usage/plausible_date.h"
#include "usage/usage_history_store.h"

#include <algorithm>

namespace fleetwise {

namespace {

using Window = QuotaWindow;
using Store = UsageHistoryStore;
using Notice = QuotaNotice::Notice;

constexpr Seconds rateSpan{3'600};
constexpr Seconds shortestRateSpan{360};
constexpr double leastSaturationRate = 1;
constexpr Seconds dayLength{86'400};
constexpr Seconds shortestStaleness{900};
constexpr Seconds accountStaleness{30'240};
/// Windows of this length or more have a daily budget, and an end that only a rhythm tells.
constexpr Seconds longWindow{518'400};

/// What a window is derived from.
struct Course {
    std::string title;
    Seconds length{};
    QuotaValues values;  ///< none of the future
    Date toldAt;
    std::optional<Date> toldEnd;
    std::optional<Notice> notice;
};

/// What is known of where the current window lies.
struct Bounds {
    std::optional<Date> start;
    std::optional<Date> end;
    bool isTold = false;         ///< the end is the server's, not derived from the values
    std::optional<Date> passed;  ///< the server's end of the window before
};

void dropFuture(QuotaValues& values, Date now) {
    while (!values.empty() && isOfFuture(values.back().first, now))
        values.pop_back();
}

QuotaValues::const_iterator firstFrom(const QuotaValues& values, Date date) {
    return std::lower_bound(values.begin(), values.end(), date,
                            [](const auto& value, Date since) { return value.first < since; });
}

/// The told end, passed or not, unless the values show a reset since it was told.
std::optional<Date> standingEnd(const Course& course, Date now) {
    if (!course.toldEnd || isOfFuture(course.toldAt, now)) return {};
    if (*course.toldEnd > course.toldAt + course.length + serverTolerance) return {};
    const std::vector<Date> resets = Store::resets(course.values);
    const bool isOutlived = !resets.empty() && resets.back() > course.toldAt;
    return isOutlived ? std::nullopt : course.toldEnd;
}

Bounds boundsOf(const Course& course, Date now) {
    const bool isLong = course.length >= longWindow;
    Bounds bounds;
    const auto told = standingEnd(course, now);
    if (told && *told > now) {
        bounds.end = told;
        bounds.isTold = true;
    } else {
        bounds.end = isLong ? Store::nextReset(course.values, course.length, now)
                            : Store::windowEnd(course.values, course.length, now);
        bounds.passed = told;
        // A window that began before the told end is over, whatever the values suggest.
        const Seconds tolerance = isLong ? Store::rhythmTolerance : Seconds(0);
        if (told && bounds.end && *bounds.end - course.length < *told - tolerance) {
            bounds.end.reset();
        }
    }
    if (!isLong) {
        const auto end = QuotaNotice::korrigiert(bounds.end, course.notice, now, course.length);
        bounds.isTold = bounds.isTold || end != bounds.end;
        bounds.end = end;
    }
    if (bounds.end) bounds.start = *bounds.end - course.length;
    return bounds;
}

/// The rise over the last hour; a reset in it leaves none.
std::optional<double> ratePerHour(const QuotaValues& values, Date now) {
    const auto first = firstFrom(values, now - rateSpan);
    if (first == values.end()) return {};
    for (auto value = first + 1; value != values.end(); ++value) {
        if ((value - 1)->second - value->second >= leastResetDrop) return {};
    }
    const Seconds span = values.back().first - first->first;
    const int rise = values.back().second - first->second;
    if (span <= shortestRateSpan || rise <= 0) return {};
    return rise / (span.count() / 3600);
}

/// The highest value since the last one that fell by a reset's drop, from `since` on.
int peakSince(const QuotaValues& values, Date since) {
    int peak = values.back().second;
    for (auto value = values.end() - 1; value != values.begin(); --value) {
        const auto& before = *(value - 1);
        if (before.first < since || before.second - value->second >= leastResetDrop) break;
        peak = std::max(peak, before.second);
    }
    return peak;
}

/// Nothing where the latest value is itself that old.
std::optional<int> dayDelta(const QuotaValues& values, Date now) {
    const auto later =
        std::upper_bound(values.begin(), values.end(), now - dayLength,
                         [](Date date, const auto& value) { return date < value.first; });
    if (later == values.begin() || later == values.end()) return {};
    return values.back().second - (later - 1)->second;
}

std::optional<Date> saturation(const Window& window, Date now) {
    if (!window.ratePerHour || *window.ratePerHour < leastSaturationRate) return {};
    if (window.percent >= 100 || !window.windowEndsAt) return {};
    const Date full = now + Seconds((100 - window.percent) / *window.ratePerHour * 3600);
    return full <= *window.windowEndsAt ? std::optional(full) : std::nullopt;
}

/// Values of a window before the current one say nothing about what was used of this one.
std::optional<int> usedToday(QuotaValues values, const Bounds& bounds, Date now,
                             Calendar calendar) {
    if (!bounds.start) return {};
    const auto first = firstFrom(values, *bounds.start);
    if (*bounds.start <= startOfDay(localDay(now, calendar), calendar)) {
        values.erase(values.begin(), first);
    } else if (bounds.isTold) {
        values.insert(first, {*bounds.start, 0});
    }
    return Store::usedToday(values, now, calendar);
}

/// Whether the latest value was measured in the current window, as far as that is known.
bool isCurrent(const Window& window, const Bounds& bounds) {
    return (!bounds.start || window.measuredAt >= *bounds.start) &&
           (!bounds.passed || window.measuredAt >= *bounds.passed);
}

void addOutlook(Window& window, const Course& course, const Bounds& bounds, Date now,
                Calendar calendar) {
    if (!bounds.end) return;
    window.projection = Store::projection(window.percent, *bounds.start, *bounds.end, now);
    window.saturatesAt = saturation(window, now);
    if (course.length < longWindow) return;
    window.dailyBudget = Store::dailyBudget(
        window.percent, usedToday(course.values, bounds, now, calendar), bounds.end, now, calendar);
}

std::optional<Window> derivedWindow(Course course, Date now, Calendar calendar) {
    dropFuture(course.values, now);
    if (course.values.empty()) return {};
    const Bounds bounds = boundsOf(course, now);
    Window window;
    window.title = course.title;
    window.measuredAt = course.values.back().first;
    window.percent = course.values.back().second;
    const bool isOfThis = isCurrent(window, bounds);
    window.isStale = !isOfThis || now - window.measuredAt >
                                      std::max(Seconds(course.length / 20), shortestStaleness);
    if (!window.isStale) window.ratePerHour = ratePerHour(course.values, now);
    window.dayDelta = dayDelta(course.values, now);
    window.resetsAt = window.windowEndsAt = bounds.end;
    window.windowStartsAt = bounds.start;
    const bool hasStart = isOfThis && bounds.start;
    window.peak =
        peakSince(course.values, hasStart ? *bounds.start : window.measuredAt - course.length);
    if (isOfThis) addOutlook(window, course, bounds, now, calendar);
    return window;
}

Course fiveHourCourse(QuotaValues values, const std::optional<Notice>& notice,
                      const ToldWindowEnds& told) {
    return {.title = localised("5-Stunden-Fenster"_text),
            .length = fiveHours,
            .values = std::move(values),
            .toldAt = told.toldAt,
            .toldEnd = told.fiveHour,
            .notice = notice};
}

Course sevenDayCourse(QuotaValues values, const ToldWindowEnds& told) {
    return {.title = localised("7-Tage-Fenster"_text),
            .length = sevenDays,
            .values = std::move(values),
            .toldAt = told.toldAt,
            .toldEnd = told.sevenDay,
            .notice = {}};
}

std::string accountTitle(const std::string& org, int rang, const Json& names) {
    if (const auto name = member<std::string>(names, org); name && !trimmed(*name).empty()) {
        return *name;
    }
    return UsageHistoryStore::substituteTitle(rang);
}

}  // namespace

std::string UsageHistoryStore::substituteTitle(int rang) {
    return rang == 0 ? localised("Dieses Konto"_text)
                     : localisedFormat("Weiteres Konto %d"_text, rang);
}

std::optional<Window> UsageHistoryStore::fiveHourWindow(const UsageSamples& from, Date now,
                                                        const std::optional<Notice>& meldung,
                                                        Calendar calendar,
                                                        const ToldWindowEnds& told) {
    return derivedWindow(fiveHourCourse(fiveHourValues(from), meldung, told), now, calendar);
}

std::optional<Window> UsageHistoryStore::sevenDayWindow(const UsageSamples& from, Date now,
                                                        Calendar calendar,
                                                        const ToldWindowEnds& told) {
    return derivedWindow(sevenDayCourse(sevenDayValues(from), told), now, calendar);
}

std::vector<UsageHistoryStore::Konto> UsageHistoryStore::konten(
    const UsageSamples& from, Date now, const std::optional<Notice>& meldung,
    const Json& accountNames, Calendar calendar, const ToldWindowEnds& told) {
    std::vector<std::string> found = orgs(from, now);
    if (found.size() < 2) return {};
    found.resize(std::min(found.size(), mostAccounts));
    std::vector<Konto> accounts;
    for (std::string& org : found) {
        const auto rang = static_cast<int>(accounts.size());
        const UsageSamples own = samples(org, from);
        const auto latest = std::find_if(own.rbegin(), own.rend(), [&](const UsageSample& sample) {
            return !isOfFuture(sample.date, now);
        });
        Konto account;
        account.rang = rang;
        account.titel = accountTitle(org, rang, accountNames);
        account.fuenfStunden = fiveHourWindow(own, now, rang == 0 ? meldung : std::nullopt,
                                              calendar, rang == 0 ? told : ToldWindowEnds());
        account.siebenTage =
            sevenDayWindow(own, now, calendar, rang == 0 ? told : ToldWindowEnds());
        if (latest != own.rend()) account.gemessenAm = latest->date;
        account.istVeraltet = !account.gemessenAm || now - *account.gemessenAm > accountStaleness;
        account.org = std::move(org);
        accounts.push_back(std::move(account));
    }
    return accounts;
}

}  // namespace fleetwise
