#pragma once

#include "foundation/date.h"
#include "usage/codex_quota.h"
#include "usage/plan_store.h"
#include "usage/quota_window.h"
#include "usage/usage_overview.h"

#include <optional>
#include <string>

namespace fleetwise {

// Quota in words, in the interface language. Pure functions.

/// When the window begins anew, short: "noch 1 h 50 min" within a day, else "Mi 13:27"; empty
/// where it is not known or has passed.
std::string quotaResetText(const QuotaWindow& window, Date now, Calendar calendar);

/// "5 h 42 % · noch 1 h 50 min": the line of the popover and the tooltip. `length` tells the
/// window.
std::string quotaLineText(const QuotaWindow& window, Seconds length, Date now, Calendar calendar);

/// How old stale figures are, "vor 3 h gemessen"; empty while they are fresh.
std::string quotaAgeText(const QuotaWindow& window, Date now);

/// "4,2 Punkte je Stunde"; empty without a rate.
std::string quotaRateText(const QuotaWindow& window);

/// "am Ende 87 %", or "bei diesem Tempo voll um 18:46" where it will not do; empty without either.
std::string quotaProjectionText(const QuotaWindow& window, Date now, Calendar calendar);

/// "12,5 Punkte je Tag übrig, heute 8 verbraucht"; empty without a budget.
std::string quotaBudgetText(const QuotaWindow& window);

/// "+12 Punkte gegen gestern"; empty where that is not known.
std::string quotaDayDeltaText(const QuotaWindow& window);

/// "12 %, zurückgesetzt seit …", with the figure's age where it is stale, the reset where it lies
/// ahead: one line of a Codex window, without its label.
std::string codexQuotaText(const CodexQuota& quota, Date now, Calendar calendar);

/// "Max 20x, Pauschale, Zusatznutzung an".
std::string planText(const PlanStore::Plan& plan);

/// Where the figures come from, or what is missing where there are none: one or two sentences.
std::string quotaSourceText(const UsageOverview& usage);

/// What is read of ~/.claude.json: one or two sentences.
std::string configurationReadingText();

}  // namespace fleetwise
