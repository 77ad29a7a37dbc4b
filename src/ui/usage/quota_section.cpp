#include "ui/usage/quota_section.h"

#include "fleet/quota_texts.h"
#include "localisation/day_format.h"
#include "ui/base/chip_choice.h"
#include "ui/base/interface_text.h"
#include "ui/charts/time_chart.h"
#include "usage/plausible_date.h"

#include <QBoxLayout>
#include <QStringList>

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

constexpr Seconds oneDay{86'400};
constexpr std::array<std::pair<Seconds, Text>, 3> allSpans{
    {{oneDay, "24 Stunden"_text}, {7 * oneDay, "7 Tage"_text}, {14 * oneDay, "14 Tage"_text}}};

/// A rise within the window of five hours is told every few minutes; the other one moves slowly.
constexpr Seconds longestGapOfFiveHours{30 * 60};
constexpr Seconds longestGapOfSevenDays{6 * 3'600};
/// How far a chart looks ahead at most, as a share of the time it looks back.
constexpr double largestOutlook = 0.5;

QStringList spanNames() {
    QStringList names;
    for (const auto& [span, name] : allSpans)
        names << shown(name);
    return names;
}

QString titleOf(Seconds length) {
    return length == fiveHours ? shown("5-Stunden-Fenster"_text) : shown("7-Tage-Fenster"_text);
}

QString tailLabel(const QuotaWindow& window, Date now, Calendar calendar) {
    if (!window.projection || window.isStale) return {};
    const auto& full = window.projection->exhaustedAt;
    if (!full) return shown("%d %%"_text, window.projection->percent);
    const bool isSoon = localDay(*full, calendar) == localDay(now, calendar);
    return shown("voll %@"_text, isSoon ? formatDate(*full, calendar, "%H:%M")
                                        : shortDayText(formatDate(*full, calendar, "%Y-%m-%d")));
}

}  // namespace

QString quotaSummary(const QuotaWindow& window, Seconds length, Date now, Calendar calendar) {
    QStringList parts;
    for (const std::string& part :
         {quotaLineText(window, length, now, calendar), quotaRateText(window),
          window.isStale ? std::string() : quotaProjectionText(window, now, calendar),
          quotaBudgetText(window), quotaDayDeltaText(window), quotaAgeText(window, now)}) {
        if (!part.empty()) parts << qtText(part);
    }
    return parts.join(QStringLiteral(" · "));
}

FigureTable quotaTable(const QuotaValues& values, Seconds length, Date since, Date now,
                       Calendar calendar) {
    FigureTable table{
        .title = titleOf(length).toStdString(),
        .headings = {localised("Zeit"_text), localised("Verbraucht in Prozent"_text)}};
    for (const auto& [date, percent] : values) {
        if (date < since || isOfFuture(date, now)) continue;
        const std::string day = formatDate(date, calendar, "%Y-%m-%d");
        const std::string time = formatDate(date, calendar, "%H:%M");
        table.rows.push_back({{.text = dayText(day) + ' ' + time, .plain = day + ' ' + time},
                              {.text = localisedFormat("%d %%"_text, percent), .number = percent}});
    }
    return table;
}

QuotaSection::QuotaSection(Seconds givenLength, QWidget* parent)
    : QWidget(parent),
      length(givenLength),
      chart(new TimeChart(titleOf(length))),
      section(new FigureSection(titleOf(length), chart)),
      spans(new ChipChoice(shown("Zeitraum"_text) + QStringLiteral(": ") + titleOf(length),
                           spanNames())) {
    spans->choose(length == fiveHours ? 0 : static_cast<int>(allSpans.size()) - 1);
    section->addControl(spans);
    connect(spans, &ChipChoice::changed, this, &QuotaSection::spanChanged);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(section);
}

Seconds QuotaSection::span() const {
    return allSpans.at(static_cast<std::size_t>(spans->chosen())).first;
}

void QuotaSection::setQuota(const QuotaValues& values, const std::optional<QuotaWindow>& window,
                            Date now, Calendar calendar) {
    const Date since = now - span();
    TimeChartData course{
        .series = quotaSeries(values, window, since, now),
        .from = since,
        .now = now,
        .latest = now + span() * largestOutlook,
        .longestGap = length == fiveHours ? longestGapOfFiveHours : longestGapOfSevenDays,
        .isStale = window && window->isStale,
        .tailLabel = window ? tailLabel(*window, now, calendar) : QString(),
        .calendar = calendar};
    section->setSummary(window ? quotaSummary(*window, length, now, calendar) : QString());
    section->setStale(course.isStale);
    section->setHint(course.series.points.empty()
                         ? shown("In diesem Zeitraum wurde nichts gemessen."_text)
                         : QString());
    section->setTable([=, this] { return quotaTable(values, length, since, now, calendar); });
    chart->setData(std::move(course));
}

}  // namespace fleetwise
