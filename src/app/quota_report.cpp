#include "app/quota_report.h"

#include "fleet/goal_texts.h"
#include "fleet/quota_texts.h"
#include "foundation/text.h"
#include "localisation/duration_format.h"
#include "localisation/number_format.h"

#include <fmt/format.h>

#include <initializer_list>
#include <iterator>

namespace fleetwise {

namespace {

/// "label     text", a text alone below the line before where the label is empty.
void addLine(std::string& report, std::string_view label, const std::string& text) {
    if (text.empty()) return;
    fmt::format_to(std::back_inserter(report), "{:<11}{}\n", label, printable(text));
}

std::string joined(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts) {
        if (part.empty()) continue;
        if (!text.empty()) text += " · ";
        text += part;
    }
    return text;
}

std::string endText(std::optional<Date> end, const Diagnostics& diagnostics) {
    if (!end || *end <= diagnostics.now) return {};
    return "Ende " + formatDate(*end, diagnostics.calendar, "%d.%m.%Y %H:%M");
}

std::string windowText(const QuotaWindow& window, Seconds length, const Diagnostics& diagnostics) {
    const Date now = diagnostics.now;
    const bool hasFallen = window.peak > window.percent;
    return joined(
        {fmt::format("{} {} %", length == fiveHours ? "5 h" : "7 T", window.percent),
         quotaAgeText(window, now), quotaRateText(window),
         hasFallen ? fmt::format("höchstens {} %", window.peak) : std::string(),
         endText(window.windowEndsAt ? window.windowEndsAt : window.resetsAt, diagnostics),
         window.isStale ? std::string() : quotaProjectionText(window, now, diagnostics.calendar),
         quotaBudgetText(window), quotaDayDeltaText(window)});
}

void addWindows(std::string& report, std::string_view label,
                const std::optional<QuotaWindow>& fiveHour,
                const std::optional<QuotaWindow>& sevenDay, const Diagnostics& diagnostics) {
    if (fiveHour) addLine(report, label, windowText(*fiveHour, fiveHours, diagnostics));
    if (sevenDay) {
        addLine(report, fiveHour ? std::string_view() : label,
                windowText(*sevenDay, sevenDays, diagnostics));
    }
}

void addPlans(std::string& report, const UsageOverview& usage) {
    std::string_view label = "Tarif:";
    for (const PlanStore::Plan& plan : usage.plans) {
        addLine(report, label, fmt::format("{}: {}", plan.agent.label(), planText(plan)));
        label = {};
    }
}

std::string codexWindowText(const CodexQuota& quota, const Diagnostics& diagnostics) {
    const Date now = diagnostics.now;
    const std::string percent = fmt::format("{} %", quota.usedPercent);
    const std::string end = endText(quota.resetsAt, diagnostics);
    if (!end.empty()) return joined({percent, end});
    return joined({codexQuotaText(quota, now, diagnostics.calendar),
                   quota.hasReset(now) ? "vorher " + percent : std::string()});
}

std::string creditsText(const PlanStore::Plan& plan) {
    if (plan.hasUnlimitedCredits) return "unbegrenzt";
    return plan.creditMinorUnits ? fixedNumber(*plan.creditMinorUnits, 2) : std::string();
}

}  // namespace

std::string quotaReport(const Diagnostics& diagnostics) {
    const UsageOverview& usage = diagnostics.usage;
    std::string report;
    addWindows(report, "Kontingent", usage.fiveHour, usage.sevenDay, diagnostics);
    const bool hasWindows = !report.empty();
    addLine(report, hasWindows ? "" : "Kontingent", quotaSourceText(usage));
    for (const auto& account : usage.accounts) {
        // The one in use stands above.
        if (account.rang == 0) continue;
        addLine(report, {}, fmt::format("Konto {}: {}", account.rang + 1, account.titel));
        addWindows(report, {}, account.fuenfStunden, account.siebenTage, diagnostics);
    }
    addPlans(report, usage);
    return report;
}

std::string codexQuotaReport(const Diagnostics& diagnostics) {
    std::string report = "\nCodex-Kontingent\n";
    const auto& codex = diagnostics.usage.codex;
    if (!codex) return report + "    keine Angaben in den jüngsten Rollouts\n";
    const auto add = [&](std::string_view label, const std::string& text) {
        if (text.empty()) return;
        fmt::format_to(std::back_inserter(report), "    {:<21}{}\n", fmt::format("{}:", label),
                       printable(text));
    };
    const Date now = diagnostics.now;
    for (const CodexQuota& quota : codex->windows)
        add(quota.windowLabel(), codexWindowText(quota, diagnostics));
    if (codex->observedAt && now > *codex->observedAt) {
        add("Stand", fmt::format("vor {}", durationText(now - *codex->observedAt)));
    }
    for (const PlanStore::Plan& plan : diagnostics.usage.plans) {
        if (!plan.agent.isCodex()) continue;
        add("Tarif", plan.name.value_or("unbekannt"));
        add("Guthaben", creditsText(plan));
    }
    return report;
}

std::string goalReport(const Diagnostics& diagnostics, const std::string& sessionId) {
    const OwnGoals own(diagnostics.ownGoals, [](const Json&) {});
    if (const auto entry = own.entry(sessionId)) {
        const auto cost = diagnostics.costs.find(sessionId);
        const std::int64_t tokens =
            cost == diagnostics.costs.end() ? 0 : cost->second->tally().all();
        const auto goal = own.goal(sessionId, tokens, diagnostics.now);
        return joined({goal ? goalText(*goal) : std::string(), goalLimitsText(*entry), "eigenes"});
    }
    const auto& goals = *diagnostics.usage.codexGoals;
    const auto found = goals.find(sessionId);
    return found == goals.end() ? std::string() : goalText(found->second);
}

}  // namespace fleetwise
