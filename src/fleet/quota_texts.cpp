#include "fleet/quota_texts.h"

#include "localisation/day_format.h"
#include "localisation/duration_format.h"
#include "localisation/localisation.h"
#include "localisation/money_format.h"
#include "localisation/number_format.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace fleetwise {

namespace {

constexpr Seconds oneDay{86'400};
/// From here on a day of the week could be taken for that of this week.
constexpr Seconds almostAWeek{6 * 86'400};

constexpr std::array<Text, 7> weekdays{"So"_text, "Mo"_text, "Di"_text, "Mi"_text,
                                       "Do"_text, "Fr"_text, "Sa"_text};

void add(std::string& text, const std::string& part, std::string_view separator) {
    if (part.empty()) return;
    if (!text.empty()) text += separator;
    text += part;
}

/// "Mi 13:27", further ahead "02.12. 13:27".
std::string dayAndTime(Date date, Date now, Calendar calendar) {
    const std::string time = formatDate(date, calendar, "%H:%M");
    if (date - now >= almostAWeek) {
        return fmt::format("{} {}", shortDayText(formatDate(date, calendar, "%F")), time);
    }
    const ::date::weekday day(localDay(date, calendar));
    return fmt::format("{} {}", localised(weekdays.at(day.c_encoding())), time);
}

/// "18:46" on the same day.
std::string timeText(Date date, Date now, Calendar calendar) {
    if (localDay(date, calendar) == localDay(now, calendar)) {
        return formatDate(date, calendar, "%H:%M");
    }
    return dayAndTime(date, now, calendar);
}

std::string timeUntil(std::optional<Date> date, Date now, Calendar calendar) {
    if (!date || *date <= now) return {};
    if (*date - now > oneDay) return dayAndTime(*date, now, calendar);
    return localisedFormat("noch %@"_text, durationText(*date - now));
}

std::string measuredText(Date measuredAt, Date now) {
    return localisedFormat("vor %@ gemessen"_text, durationText(now - measuredAt));
}

/// "4,2 Punkte".
std::string pointsText(double points) {
    const std::int64_t tenths = std::llround(points * 10);
    if (tenths == 10) return localised("1 Punkt"_text);
    return localisedFormat("%@ Punkte"_text,
                           tenths % 10 == 0 ? groupedNumber(tenths / 10) : fixedNumber(tenths, 1));
}

std::string windowName(Seconds length) {
    if (length == fiveHours) return localised("5 h"_text);
    if (length == sevenDays) return localised("7 d"_text);
    return durationText(length);
}

std::string creditText(const PlanStore::Plan& plan) {
    if (plan.hasUnlimitedCredits) return localised("unbegrenztes Guthaben"_text);
    if (!plan.creditMinorUnits) return {};
    const std::string balance =
        plan.currency == "USD" ? moneyText(static_cast<double>(*plan.creditMinorUnits) / 100)
        : plan.currency        ? fixedNumber(*plan.creditMinorUnits, 2) + ' ' + *plan.currency
                               : fixedNumber(*plan.creditMinorUnits, 2);
    return localisedFormat("Guthaben %@"_text, balance);
}

}  // namespace

std::string quotaResetText(const QuotaWindow& window, Date now, Calendar calendar) {
    return timeUntil(window.windowEndsAt ? window.windowEndsAt : window.resetsAt, now, calendar);
}

std::string quotaLineText(const QuotaWindow& window, Seconds length, Date now, Calendar calendar) {
    std::string text =
        fmt::format("{} {}", windowName(length), localisedFormat("%d %%"_text, window.percent));
    add(text, quotaResetText(window, now, calendar), " · ");
    return text;
}

std::string quotaAgeText(const QuotaWindow& window, Date now) {
    return window.isStale ? measuredText(window.measuredAt, now) : std::string();
}

std::string quotaRateText(const QuotaWindow& window) {
    if (!window.ratePerHour) return {};
    return localisedFormat("%@ je Stunde"_text, pointsText(*window.ratePerHour));
}

std::string quotaProjectionText(const QuotaWindow& window, Date now, Calendar calendar) {
    constexpr int full = 100;
    if (window.percent >= full) return {};
    const auto exhausted = window.projection ? window.projection->exhaustedAt : std::nullopt;
    if (const auto at = exhausted ? exhausted : window.saturatesAt; at && *at > now) {
        return localisedFormat("bei diesem Tempo voll um %@"_text, timeText(*at, now, calendar));
    }
    if (!window.projection) return {};
    return localisedFormat("am Ende %d %%"_text, window.projection->percent);
}

std::string quotaBudgetText(const QuotaWindow& window) {
    if (!window.dailyBudget) return {};
    return localisedFormat("%@ je Tag übrig, heute %d verbraucht"_text,
                           pointsText(window.dailyBudget->perDay), window.dailyBudget->usedToday);
}

std::string quotaDayDeltaText(const QuotaWindow& window) {
    if (!window.dayDelta) return {};
    const int delta = *window.dayDelta;
    if (delta == 0) return localised("wie gestern um diese Zeit"_text);
    return localisedFormat("%@ gegen gestern"_text,
                           (delta > 0 ? "+" : "−") + pointsText(std::abs(delta)));
}

std::string codexQuotaText(const CodexQuota& quota, Date now, Calendar calendar) {
    if (quota.hasReset(now)) {
        return localisedFormat("zurückgesetzt seit %@"_text, durationText(now - *quota.resetsAt));
    }
    std::string text = localisedFormat("%d %%"_text, quota.usedPercent);
    add(text, timeUntil(quota.resetsAt, now, calendar), " · ");
    if (!quota.isStale(now)) return text;
    add(text,
        quota.observedAt ? measuredText(*quota.observedAt, now)
                         : localised("wann gemessen, ist unbekannt"_text),
        " · ");
    return text;
}

std::string planText(const PlanStore::Plan& plan) {
    std::string text = plan.name ? *plan.name : localised("Tarif unbekannt"_text);
    if (plan.isFlatRate) add(text, localised("Pauschale"_text), ", ");
    if (plan.hasOverage) {
        add(text,
            *plan.hasOverage ? localised("Zusatznutzung an"_text)
                             : localised("Zusatznutzung aus"_text),
            ", ");
    }
    add(text, creditText(plan), ", ");
    return text;
}

std::string quotaSourceText(const UsageOverview& usage) {
    using enum UsageOverview::Source;
    const std::size_t count = usage.samples->size();
    const auto fromDesktop = [&] {
        return localisedFormat(
            "Quelle: plan-usage-history.json der Claude-Desktop-App. Messpunkte: %d, im Abstand von rund fünf Minuten."_text,
            count);
    };
    switch (usage.source) {
        case desktopApp:
            return fromDesktop();
        case both:
            return fromDesktop() + ' ' +
                   localised("Dazwischen stehen Angaben, die Claude Code selbst ablegt."_text);
        case claudeCode:
            return localisedFormat(
                "Quelle: was Claude Code in ~/.claude.json ablegt, sobald es sein Kontingent erfährt. Messpunkte: %d."_text,
                count);
        case none:
            break;
    }
    return localised(
        "Die Datei plan-usage-history.json wird von der Claude-Desktop-App geschrieben. Ohne sie lässt sich die Auslastung nicht ermitteln."_text);
}

std::string configurationReadingText() {
    return localised(
               "Aus der Konfigurationsdatei liest Fleetwise ausschließlich diese Tarifangaben — keine Adresse, keine Kennung. Was der Anbieter nicht nennt, gilt als unbekannt und wird nicht geraten."_text) +
           ' ' +
           localised(
               "Dazu gehören die Kontingentstände samt Rücksetzzeiten, die Claude Code dort ablegt."_text);
}

}  // namespace fleetwise
