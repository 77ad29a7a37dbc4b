#include "ui/quota/quota_figures.h"

#include "fleet/quota_texts.h"
#include "ui/base/interface_text.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace fleetwise {

namespace {

/// With more accounts than these the last ones are only counted.
constexpr std::size_t mostBlocks = 4;

/// The mark's notch moves in steps of five minutes, so that the mark is not drawn ever anew.
constexpr double notchSteps = 60;
constexpr std::int64_t mostMinutes = 99;

QString joined(const std::vector<std::string>& parts, const QString& separator) {
    QStringList filled;
    for (const std::string& part : parts) {
        if (!part.empty()) filled << qtText(part);
    }
    return filled.join(separator);
}

QString oneLine(const std::vector<std::string>& parts) {
    return joined(parts, QStringLiteral(" · "));
}

/// Without the reset: of a stale figure its age matters more.
std::string usedText(QuotaWindow window, Seconds length, Date now, Calendar calendar) {
    window.windowEndsAt.reset();
    window.resetsAt.reset();
    return quotaLineText(window, length, now, calendar);
}

QuotaFigures::Line lineOf(const QuotaWindow& window, Seconds length, Date now, Calendar calendar) {
    const std::string main = quotaLineText(window, length, now, calendar);
    const std::string age = quotaAgeText(window, now);
    const std::string projection =
        window.isStale ? std::string() : quotaProjectionText(window, now, calendar);
    const std::string rate = quotaRateText(window);
    QuotaFigures::Line line;
    line.text = window.isStale ? oneLine({usedText(window, length, now, calendar), age,
                                          quotaResetText(window, now, calendar)})
                               : oneLine({main, projection, rate});
    line.explanation = joined({window.title, main, age, rate, projection, quotaBudgetText(window),
                               quotaDayDeltaText(window)},
                              QStringLiteral("\n"));
    line.used = window.percent / 100.0;
    line.isStale = window.isStale;
    if (!window.isStale && window.projection) line.projected = window.projection->percent / 100.0;
    return line;
}

using Lines = std::vector<QuotaFigures::Line>;

Lines linesOf(const std::optional<QuotaWindow>& short5, const std::optional<QuotaWindow>& long7,
              Date now, Calendar calendar) {
    Lines lines;
    if (short5) lines.push_back(lineOf(*short5, fiveHours, now, calendar));
    if (long7) lines.push_back(lineOf(*long7, sevenDays, now, calendar));
    return lines;
}

/// As short as Claude's windows of that length are called.
QString codexName(const CodexQuota& quota) {
    const auto lasts = [&](Seconds length) {
        return Seconds(std::chrono::minutes(quota.windowMinutes)) == length;
    };
    if (lasts(fiveHours)) return shown("5 h"_text);
    if (lasts(sevenDays)) return shown("7 d"_text);
    return qtText(quota.windowLabel());
}

QuotaFigures::Line lineOf(const CodexQuota& quota, Date now, Calendar calendar) {
    const std::string text = codexQuotaText(quota, now, calendar);
    const bool hasReset = quota.hasReset(now);
    return {.text = codexName(quota) + u' ' + qtText(text),
            .explanation = joined({quota.windowLabel(), text}, QStringLiteral("\n")),
            .used = hasReset ? 0 : quota.usedPercent / 100.0,
            .projected = {},
            .isStale = hasReset || quota.isStale(now)};
}

void addAccounts(QuotaFigures& figures, const UsageOverview& usage, Date now, Calendar calendar) {
    for (const auto& account : usage.accounts) {
        auto lines = linesOf(account.fuenfStunden, account.siebenTage, now, calendar);
        if (!lines.empty()) figures.blocks.push_back({qtText(account.titel), std::move(lines)});
    }
    if (figures.blocks.size() <= mostBlocks) return;
    const std::size_t others = figures.blocks.size() - mostBlocks + 1;
    figures.blocks.resize(mostBlocks - 1);
    figures.blocks.push_back({shownCount(static_cast<std::int64_t>(others),
                                         "%d weiteres Konto"_text, "%d weitere Konten"_text),
                              {}});
}

std::optional<double> freshShare(const std::optional<QuotaWindow>& window) {
    if (!window || window->isStale) return {};
    return window->percent / 100.0;
}

/// With one unit, and no more than two digits.
std::string shortTime(Seconds duration) {
    const auto minutes = static_cast<std::int64_t>(std::ceil(duration.count() / 60));
    if (minutes <= mostMinutes) return localisedFormat("%d m"_text, minutes);
    return localisedFormat("%d h"_text, std::llround(duration.count() / 3600));
}

}  // namespace

QuotaFigures quotaFigures(const UsageOverview& usage, Date now, Calendar calendar) {
    QuotaFigures figures;
    addAccounts(figures, usage, now, calendar);
    if (usage.accounts.empty()) {
        auto lines = linesOf(usage.fiveHour, usage.sevenDay, now, calendar);
        if (!lines.empty()) figures.blocks.push_back({shown("Claude Code"_text), std::move(lines)});
    }
    Lines ofCodex;
    if (usage.codex) {
        for (const CodexQuota& quota : usage.codex->windows)
            ofCodex.push_back(lineOf(quota, now, calendar));
    }
    const bool isClaudeOnly = ofCodex.empty();
    if (!isClaudeOnly) figures.blocks.push_back({shown("Codex"_text), std::move(ofCodex)});
    if (figures.blocks.size() == 1 && isClaudeOnly) figures.blocks.front().title.clear();
    return figures;
}

QString spokenText(const QuotaFigures& figures) {
    QStringList parts;
    for (const auto& block : figures.blocks) {
        if (!block.title.isEmpty()) parts << block.title;
        for (const auto& line : block.lines)
            parts << line.text;
    }
    return parts.join(QStringLiteral(", "));
}

MarkFigures quotaMark(const UsageOverview& usage, Date now) {
    MarkFigures figures;
    figures.fiveHour = freshShare(usage.fiveHour);
    figures.sevenDay = freshShare(usage.sevenDay);
    if (!figures.fiveHour || !usage.fiveHour->windowEndsAt) return figures;
    const Seconds left = *usage.fiveHour->windowEndsAt - now;
    if (left.count() <= 0) return figures;
    figures.reset = shortTime(left);
    const double passed = std::clamp(1 - left / fiveHours, 0.0, 1.0);
    figures.resetShare = std::floor(passed * notchSteps) / notchSteps;
    return figures;
}

std::vector<std::string> quotaTooltip(const UsageOverview& usage, Date now, Calendar calendar) {
    std::vector<std::string> lines;
    const auto add = [&](const std::optional<QuotaWindow>& window, Seconds length) {
        if (!window) return;
        lines.push_back(
            oneLine({quotaLineText(*window, length, now, calendar), quotaAgeText(*window, now)})
                .toStdString());
    };
    add(usage.fiveHour, fiveHours);
    add(usage.sevenDay, sevenDays);
    return lines;
}

}  // namespace fleetwise
