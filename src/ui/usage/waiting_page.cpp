#include "ui/usage/waiting_page.h"

#include "fleet/project_names.h"
#include "localisation/day_format.h"
#include "localisation/duration_format.h"
#include "ui/base/interface_text.h"
#include "ui/charts/day_bars.h"
#include "ui/charts/figure_section.h"

#include <QBoxLayout>
#include <QStringList>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr std::size_t mostTicks = 4;
constexpr std::size_t mostProjects = 8;
constexpr Seconds minuteLength{60};

FigureTable::Cell durationCell(Seconds duration) {
    return {.text = durationText(duration), .number = duration / minuteLength};
}

FigureTable dayTable(const std::vector<AttentionLog::Day>& days) {
    FigureTable table{.title = localised("Wartezeit je Tag"_text),
                      .headings = {localised("Tag"_text), localised("Gewartet in Minuten"_text)}};
    for (const AttentionLog::Day& day : days) {
        const std::string name = dayName(::date::local_days(day.day));
        table.rows.push_back({{.text = dayText(name), .plain = name}, durationCell(day.waited)});
    }
    return table;
}

QString summaryText(const AttentionLog::Summary& summary) {
    return shown("Insgesamt %@ · %d-mal · längste Wartezeit %@"_text, durationText(summary.total),
                 summary.count, durationText(summary.longest));
}

}  // namespace

WaitingPage::WaitingPage(FleetMonitor& givenMonitor, QWidget* parent)
    : UsagePage(parent),
      monitor(givenMonitor),
      days(new DayBars(shown("Wartezeit je Tag"_text))),
      daySection(new FigureSection(shown("Wartezeit je Tag"_text), days)),
      projects(new RankBars(shown("Wartezeit je Projekt"_text))),
      projectSection(new FigureSection(shown("Wartezeit je Projekt"_text), projects)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::margin);
    layout->setSpacing(Metrics::groupGap);
    layout->addWidget(daySection);
    layout->addWidget(projectSection);
    layout->addStretch();
}

QString WaitingPage::name() const {
    return shown("Wartezeit"_text);
}

void WaitingPage::setShowsTables(bool showsTables) {
    daySection->setShowsTable(showsTables);
    projectSection->setShowsTable(showsTables);
}

void WaitingPage::refresh(Date now) {
    const Calendar calendar = monitor.calendar();
    const Date since = startOfDay(localDay(now, calendar) - ::date::days(shownDays - 1), calendar);
    const auto episodes = monitor.waitingEpisodes(since);
    const bool isEmpty = episodes.empty();
    daySection->setHint(
        !isEmpty
            ? QString()
            : shown(
                  "In den letzten 30 Tagen hat keine Sitzung auf dich gewartet. Sobald eine wartet, steht hier, wie lange."_text));
    daySection->setSummary(isEmpty ? QString() : summaryText(AttentionLog::summary(episodes)));
    projectSection->setVisible(!isEmpty);
    showDays(episodes, since, now);
    showProjects(AttentionLog::byProject(episodes));
}

void WaitingPage::showDays(const std::vector<AttentionEpisode>& episodes, Date since, Date now) {
    const auto all = AttentionLog::byDay(episodes, since, now, monitor.calendar());
    DayBarsData bars;
    Seconds highest{0};
    for (const AttentionLog::Day& day : all) {
        const std::string label = shortDayText(dayName(::date::local_days(day.day)));
        bars.bars.push_back({.label = qtText(label),
                             .text = qtText(label + " · " + durationText(day.waited)),
                             .parts = {day.waited.count()}});
        highest = std::max(highest, day.waited);
    }
    for (const Seconds tick : durationTicks(highest, mostTicks))
        bars.ticks.emplace_back(tick.count(), qtText(tick > Seconds(0) ? durationText(tick) : "0"));
    days->setData(std::move(bars));
    daySection->setTable([all] { return dayTable(all); });
}

RankRow WaitingPage::rankRow(const Project& project, const ProjectNames& names) {
    const auto& [folder, summary] = project;
    return {.name = qtText(names.name(folder)),
            .figure = qtText(durationText(summary.total)),
            .text = qtText(names.path(folder)) + QStringLiteral(" · ") + summaryText(summary),
            .value = summary.total.count()};
}

void WaitingPage::showProjects(const std::vector<Project>& all) {
    FigureTable table{.title = localised("Wartezeit je Projekt"_text),
                      .headings = {localised("Projekt"_text), localised("Gewartet in Minuten"_text),
                                   localised("Anzahl"_text), localised("Längste in Minuten"_text)}};
    std::vector<std::string> folders;
    for (const Project& project : all)
        folders.push_back(project.first);
    const ProjectNames names(folders, monitor.home());
    std::vector<RankRow> rows;
    AttentionLog::Summary rest;
    for (const Project& project : all) {
        const auto& [folder, summary] = project;
        table.rows.push_back(
            {{.text = names.path(folder)},
             durationCell(summary.total),
             {.text = std::to_string(summary.count), .number = static_cast<double>(summary.count)},
             durationCell(summary.longest)});
        if (rows.size() < mostProjects) {
            rows.push_back(rankRow(project, names));
            continue;
        }
        rest.total += summary.total;
        rest.count += summary.count;
        rest.longest = std::max(rest.longest, summary.longest);
    }
    if (rest.count > 0) {
        const QString name = shown("Übrige Projekte"_text);
        rows.push_back({.name = name,
                        .figure = qtText(durationText(rest.total)),
                        .text = name + QStringLiteral(" · ") + summaryText(rest),
                        .value = rest.total.count()});
    }
    projects->setRows(std::move(rows));
    projectSection->setTable([table = std::move(table)] { return table; },
                             FigureSection::Reading::fromStart);
}

}  // namespace fleetwise
