#include "ui/usage/spending_page.h"

#include "fleet/cost_texts.h"
#include "localisation/day_format.h"
#include "localisation/money_format.h"
#include "localisation/number_format.h"
#include "ui/base/interface_text.h"
#include "ui/charts/figure_section.h"
#include "ui/usage/figure_choice.h"

#include <QBoxLayout>
#include <QStringList>

#include <algorithm>
#include <map>

namespace fleetwise {

namespace {

constexpr std::size_t mostTicks = 4;
constexpr double leastMoney = 0.01;
constexpr std::size_t daysOfWeek = 7;

double amount(const UsageDay::Model& model, UsageFigure figure) {
    if (figure == UsageFigure::money) return std::max(0.0, model.api.usd.value_or(0));
    return static_cast<double>(model.tally.all());
}

std::string dayName(const UsageDay& day) {
    return fleetwise::dayName(::date::local_days(day.day));
}

/// All models by their total, the largest first.
std::vector<SpendingFigures::Series> totals(const std::vector<UsageDay>& days, UsageFigure figure) {
    std::map<std::string, double> byName;
    for (const UsageDay& day : days) {
        for (const UsageDay::Model& model : day.models)
            byName[model.name] += amount(model, figure);
    }
    std::vector<SpendingFigures::Series> all;
    for (const auto& [name, total] : byName)
        all.push_back({name, total});
    std::ranges::stable_sort(all, std::ranges::greater(), &SpendingFigures::Series::total);
    return all;
}

TokenTally tally(const UsageDay& day) {
    TokenTally sum;
    for (const UsageDay::Model& model : day.models)
        sum += model.tally;
    return sum;
}

Money money(const UsageDay& day) {
    Money sum;
    for (const UsageDay::Model& model : day.models)
        sum += model.api;
    return sum;
}

/// What the last `count` days come to.
QString sumText(const std::vector<UsageDay>& days, std::size_t count, UsageFigure figure) {
    TokenTally tokens;
    Money usd;
    for (std::size_t index = days.size() - std::min(count, days.size()); index < days.size();
         ++index) {
        tokens += tally(days[index]);
        usd += money(days[index]);
    }
    if (figure == UsageFigure::tokens) return qtText(shortNumber(tokens.all()));
    const std::string text = costText(usd);
    return qtText(text.empty() ? moneyText(0) : text);
}

FigureTable::Cell cell(const TokenTally& tokens, const Money& usd, UsageFigure figure) {
    if (figure == UsageFigure::money) return {.text = costText(usd), .number = usd.usd};
    const std::int64_t count = tokens.all();
    return {.text = groupedNumber(count), .number = static_cast<double>(count)};
}

}  // namespace

SpendingFigures spendingFigures(const std::vector<UsageDay>& days, UsageFigure figure) {
    SpendingFigures figures{.series = totals(days, figure)};
    std::erase_if(figures.series, [](const auto& series) { return !(series.total > 0); });
    if (figures.series.size() > mostSeries) {
        SpendingFigures::Series rest{.name = localised("Übrige"_text)};
        for (std::size_t index = mostSeries - 1; index < figures.series.size(); ++index)
            rest.total += figures.series[index].total;
        figures.series.resize(mostSeries - 1);
        figures.series.push_back(rest);
        figures.hasRest = true;
    }
    for (const UsageDay& day : days) {
        std::vector<double> parts(figures.series.size());
        for (const UsageDay::Model& model : day.models) {
            const double value = amount(model, figure);
            if (!(value > 0)) continue;
            const auto named =
                std::ranges::find(figures.series, model.name, &SpendingFigures::Series::name);
            const auto place = named == figures.series.end()
                                   ? parts.size() - 1
                                   : static_cast<std::size_t>(named - figures.series.begin());
            parts[place] += value;
        }
        figures.days.push_back(std::move(parts));
    }
    return figures;
}

FigureTable spendingTable(const std::vector<UsageDay>& days, UsageFigure figure) {
    FigureTable table{.headings = {localised("Tag"_text)}};
    table.title = figure == UsageFigure::money ? localised("Kosten je Tag"_text)
                                               : localised("Tokens je Tag"_text);
    const auto all = totals(days, figure);
    for (const auto& series : all)
        table.headings.push_back(series.name);
    table.headings.push_back(figure == UsageFigure::money ? localised("Summe in US-Dollar"_text)
                                                          : localised("Summe"_text));
    for (const UsageDay& day : days) {
        const std::string name = dayName(day);
        FigureTable::Row row{{.text = dayText(name), .plain = name}};
        for (const auto& series : all) {
            const auto model = std::ranges::find(day.models, series.name, &UsageDay::Model::name);
            row.push_back(model == day.models.end() ? FigureTable::Cell{}
                                                    : cell(model->tally, model->api, figure));
        }
        row.push_back(cell(tally(day), money(day), figure));
        table.rows.push_back(std::move(row));
    }
    return table;
}

SpendingPage::SpendingPage(FleetMonitor& givenMonitor, QWidget* parent)
    : UsagePage(parent),
      monitor(givenMonitor),
      chart(new DayBars(shown("Verbrauch je Tag"_text))),
      section(new FigureSection(shown("Verbrauch je Tag"_text), chart)),
      choice(new FigureChoice(monitor)) {
    section->addControl(choice);
    connect(choice, &FigureChoice::changed, this, [this] { refresh(monitor.clock()); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::margin);
    layout->addWidget(section);
    layout->addStretch();
}

QString SpendingPage::name() const {
    return shown("Verbrauch"_text);
}

bool SpendingPage::isWanted() const {
    return choice->wanted().any();
}

UsageFigure SpendingPage::figure() const {
    return choice->figure();
}

void SpendingPage::setShowsTables(bool showsTables) {
    section->setShowsTable(showsTables);
}

void SpendingPage::refresh(Date) {
    choice->follow();
    const auto days = monitor.usageDays(shownDays);
    const SpendingFigures figures = spendingFigures(days, figure());
    const bool isUnused = figures.series.empty();
    section->setHint(
        !isUnused
            ? QString()
            : shown(
                  "In den letzten 30 Tagen wurde nichts verbraucht. Sobald ein Agent arbeitet, steht hier jeder Tag."_text));
    section->setSummary(isUnused ? QString() : summary(days));
    section->setTable([days = days, figure = figure()] { return spendingTable(days, figure); });
    std::vector<ChartLegend::Entry> legend;
    for (const auto& series : figures.series)
        legend.push_back({qtText(series.name), qtText(amountText(series.total, figure()))});
    section->setLegend(std::move(legend), figures.hasRest);
    chart->setData(bars(days, figures));
}

QString SpendingPage::summary(const std::vector<UsageDay>& days) const {
    QStringList parts{
        shown("Heute %@"_text, sumText(days, 1, figure()).toStdString()),
        shown("7 Tage: %@"_text, sumText(days, daysOfWeek, figure()).toStdString()),
        shown("30 Tage: %@"_text, sumText(days, days.size(), figure()).toStdString())};
    parts << (figure() == UsageFigure::money ? qtText(priceBookText(monitor.priceBook()))
                                             : shown("Tokens samt Cache"_text));
    return parts.join(QStringLiteral(" · "));
}

DayBarsData SpendingPage::bars(const std::vector<UsageDay>& days,
                               const SpendingFigures& figures) const {
    DayBarsData stacks{.hasRest = figures.hasRest};
    double highest = 0;
    for (std::size_t index = 0; index < days.size(); ++index) {
        const std::string day = shortDayText(dayName(days[index]));
        DayBarsData::Bar bar{.label = qtText(day), .parts = figures.days[index]};
        QStringList line{qtText(day), sumText({days[index]}, 1, figure())};
        for (std::size_t place = 0; place < bar.parts.size(); ++place) {
            if (!(bar.parts[place] > 0)) continue;
            line << qtText(figures.series[place].name + ' ' +
                           amountText(bar.parts[place], figure()));
        }
        bar.text = line.join(QStringLiteral(" · "));
        highest = std::max(highest, bar.sum());
        stacks.bars.push_back(std::move(bar));
    }
    const double least = figure() == UsageFigure::money ? leastMoney : 1;
    for (const double tick : valueTicks(highest, mostTicks, least))
        stacks.ticks.emplace_back(tick, qtText(amountText(tick, figure())));
    return stacks;
}

}  // namespace fleetwise
