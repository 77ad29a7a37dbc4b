#include "usage/plan_store.h"

#include "foundation/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace fleetwise {

namespace {

constexpr std::string_view claudePrefix = "claude_";
constexpr std::size_t longestName = 40;

/// Plans that cost the same whatever is used. Of all others that is not known.
constexpr std::array<std::string_view, 3> claudeFlatRates{"pro", "max", "team"};
constexpr std::array<std::string_view, 6> codexFlatRates{"go",  "plus", "pro",
                                                         "edu", "team", "business"};

constexpr bool isDigit(char character) {
    return '0' <= character && character <= '9';
}

/// "max_20x" as "Max 20x".
std::string capitalised(std::string_view raw) {
    std::string name;
    bool isFirst = true;
    for (const char character : printable(raw)) {
        const bool isLowerCase = 'a' <= character && character <= 'z';
        const char upper = static_cast<char>(character - 'a' + 'A');
        name += character == '_' ? ' ' : isFirst && isLowerCase ? upper : character;
        isFirst = character == '_';
    }
    return shortenedText(trimmed(name), longestName);
}

std::string withoutPrefix(const std::string& text, std::string_view prefix) {
    return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

/// The part of "default_claude_max_20x" behind "claude_"; empty without one.
std::string planOfTier(const std::string& tier) {
    const std::size_t at = tier.find(claudePrefix);
    return at == std::string::npos ? "" : tier.substr(at + claudePrefix.size());
}

/// Whether the text ends in a multiple such as "_20x".
bool endsInMultiple(std::string_view text) {
    const std::string_view last = text.substr(text.rfind('_') + 1);
    return last.size() > 1 && last.size() < text.size() && last.back() == 'x' &&
           std::ranges::all_of(last.substr(0, last.size() - 1), isDigit);
}

/// "max" or, where the tier tells how much of it, "max_20x"; empty where nothing tells.
std::string claudePlan(const ClaudeConfiguration& claude) {
    const std::string type =
        withoutPrefix(asciiLowercased(trimmed(claude.organizationType.value_or(""))), claudePrefix);
    const std::string tier =
        planOfTier(asciiLowercased(trimmed(claude.rateLimitTier.value_or(""))));
    const bool isOfType = type.empty() || tier.starts_with(type + '_');
    return isOfType && endsInMultiple(tier) ? tier : type;
}

template <typename Names>
bool contains(const Names& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

std::optional<std::string> nameOf(std::string_view raw) {
    std::string name = capitalised(raw);
    if (name.empty()) return {};
    return name;
}

PlanStore::Plan planOf(const ClaudeConfiguration& claude) {
    PlanStore::Plan plan{.agent = SessionAgent("claude"), .hasOverage = claude.hasExtraUsage};
    const std::string raw = claudePlan(claude);
    plan.name = nameOf(raw);
    plan.isFlatRate = contains(claudeFlatRates, std::string_view(raw).substr(0, raw.find('_')));
    return plan;
}

std::optional<std::int64_t> minorUnits(double balance) {
    constexpr double most = 1e15;
    if (!(std::abs(balance) <= most)) return {};
    return std::llround(balance * 100);
}

PlanStore::Plan planOf(const CodexLimits& codex) {
    PlanStore::Plan plan{.agent = SessionAgent("codex")};
    const std::string raw = asciiLowercased(trimmed(codex.planType.value_or("")));
    plan.name = nameOf(raw);
    plan.isFlatRate = contains(codexFlatRates, raw);
    if (!codex.credits) return plan;
    plan.hasUnlimitedCredits = codex.credits->isUnlimited;
    if (codex.credits->hasCredits && codex.credits->balance) {
        plan.creditMinorUnits = minorUnits(*codex.credits->balance);
    }
    return plan;
}

bool tellsAnything(const PlanStore::Plan& plan) {
    return plan.name || plan.hasOverage || plan.creditMinorUnits || plan.hasUnlimitedCredits;
}

}  // namespace

std::vector<PlanStore::Plan> PlanStore::plans(const ClaudeConfiguration& claude,
                                              const std::optional<CodexLimits>& codex) {
    std::vector<Plan> plans{planOf(claude)};
    if (codex) plans.push_back(planOf(*codex));
    std::erase_if(plans, [](const Plan& plan) { return !tellsAnything(plan); });
    return plans;
}

}  // namespace fleetwise
