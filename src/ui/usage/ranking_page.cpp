#include "ui/usage/ranking_page.h"

#include "cost/session_cost.h"
#include "fleet/cost_texts.h"
#include "localisation/number_format.h"
#include "ui/base/chip_choice.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/charts/figure_section.h"
#include "ui/charts/rank_bars.h"
#include "ui/usage/figure_choice.h"

#include <QBoxLayout>
#include <QStringList>

#include <array>

namespace fleetwise {

namespace {

/// What the periods reach back, in the order of their chips; 0 is all there is.
constexpr std::array<int, 4> periodDays{7, 30, 90, 0};
constexpr int usualPeriod = 1;
constexpr std::size_t mostShares = 12;

QStringList periodNames() {
    return {shown("7 Tage"_text), shown("30 Tage"_text), shown("90 Tage"_text),
            shown("Alles"_text)};
}

QString titleOf(RankingPage::Ranking ranking) {
    return ranking == RankingPage::Ranking::models ? shown("Verbrauch je Modell"_text)
                                                   : shown("Verbrauch je Projekt"_text);
}

UsageShare restOf(const std::vector<UsageShare>& all) {
    UsageShare rest;
    for (std::size_t index = mostShares; index < all.size(); ++index) {
        rest.tally += all[index].tally;
        rest.api += all[index].api;
        rest.sessions += all[index].sessions;
    }
    return rest;
}

}  // namespace

RankingPage::RankingPage(FleetMonitor& givenMonitor, const ArchiveIndex& givenArchive,
                         Ranking givenRanking, QWidget* parent)
    : UsagePage(parent),
      monitor(givenMonitor),
      archive(givenArchive),
      ranking(givenRanking),
      bars(new RankBars(titleOf(ranking))),
      section(new FigureSection(titleOf(ranking), bars)),
      figures(new FigureChoice(monitor)),
      periods(new ChipChoice(shown("Zeitraum"_text), periodNames())) {
    periods->choose(usualPeriod);
    section->addControl(periods);
    section->addControl(figures);
    const auto showAgain = [this] { refresh(monitor.clock()); };
    connect(periods, &ChipChoice::changed, this, showAgain);
    connect(figures, &FigureChoice::changed, this, showAgain);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::margin);
    layout->addWidget(section);
    layout->addStretch();
}

QString RankingPage::name() const {
    return ranking == Ranking::models ? shown("Modelle"_text) : shown("Projekte"_text);
}

bool RankingPage::isWanted() const {
    return figures->wanted().any();
}

void RankingPage::setShowsTables(bool showsTables) {
    section->setShowsTable(showsTables);
}

std::string RankingPage::firstDay(Date now) const {
    const int days = periodDays.at(static_cast<std::size_t>(periods->chosen()));
    if (days == 0) return {};
    return dayName(localDay(now, monitor.calendar()) - ::date::days(days - 1));
}

std::vector<UsageShare> RankingPage::shares(const std::string& first) const {
    if (ranking == Ranking::models) {
        return usageByModel(monitor.used(first), monitor.priceBook(), figures->figure());
    }
    const auto costs = monitor.allCosts();
    const UsageSources sources{.costs = *costs,
                               .listed = monitor.sessions(),
                               .archived = [this](const auto& id) { return archive.entry(id); }};
    return usageByProject(
        sources, first, [&](const auto& ids) { return monitor.used(ids, first); },
        monitor.priceBook(), figures->figure());
}

QString RankingPage::summary(const std::string& first) const {
    UsageShare whole;
    for (const UsageShare& model :
         usageByModel(monitor.used(first), monitor.priceBook(), figures->figure())) {
        whole.tally += model.tally;
        whole.api += model.api;
    }
    const bool tellsMoney = figures->figure() == UsageFigure::money;
    const QStringList parts{
        shown("Insgesamt %@"_text,
              tellsMoney ? costText(whole.api) : shortNumber(whole.tally.all())),
        tellsMoney ? qtText(priceBookText(monitor.priceBook())) : shown("Tokens samt Cache"_text)};
    return parts.join(QStringLiteral(" · "));
}

QString RankingPage::hint(const std::vector<UsageShare>& all) const {
    if (needsArchive() && !archive.hasListed()) {
        return shown("Die vorigen Sitzungen werden gelesen."_text);
    }
    return all.empty()
               ? shown(
                     "In diesem Zeitraum wurde nichts verbraucht. Sobald ein Agent arbeitet, steht es hier."_text)
               : QString();
}

void RankingPage::refresh(Date now) {
    figures->follow();
    const std::string first = firstDay(std::max(now, monitor.lastRefresh()));
    const auto all = shares(first);
    const QString instead = hint(all);
    section->setHint(instead);
    section->setSummary(instead.isEmpty() ? summary(first) : QString());
    std::vector<std::string> folders;
    for (const UsageShare& share : all)
        folders.push_back(share.key);
    const ProjectNames names(folders, monitor.home());
    showBars(all, names);
    section->setTable(
        [all, names, columns = figures->wanted(), kind = ranking] {
            return kind == Ranking::models ? modelUsageTable(all, columns)
                                           : projectUsageTable(all, columns, names);
        },
        FigureSection::Reading::fromStart);
}

QString RankingPage::rowText(const QString& name, const UsageShare& share) const {
    QStringList parts{name};
    const UsageColumns columns = figures->wanted();
    if (ranking == Ranking::projects) {
        parts << shownCount(static_cast<std::int64_t>(share.sessions), "%d Sitzung"_text,
                            "%d Sitzungen"_text);
    }
    if (columns.tokens) parts << shown("%@ Tokens"_text, shortNumber(share.tally.all()));
    if (columns.money) parts << qtText(costText(share.api));
    return parts.join(QStringLiteral(" · "));
}

void RankingPage::showBars(const std::vector<UsageShare>& all, const ProjectNames& names) {
    const UsageFigure figure = figures->figure();
    std::vector<RankRow> rows;
    const auto add = [&](const QString& name, const QString& longName, const UsageShare& share) {
        const double amount = amountOf(share, figure);
        const std::string words =
            figure == UsageFigure::money ? costText(share.api) : amountText(amount, figure);
        rows.push_back({.name = name,
                        .figure = qtText(words),
                        .text = rowText(longName, share),
                        .value = amount});
    };
    for (std::size_t index = 0; index < std::min(all.size(), mostShares); ++index) {
        const std::string& key = all[index].key;
        if (ranking == Ranking::models) {
            add(qtText(key), qtText(key), all[index]);
        } else {
            add(qtText(names.name(key)), qtText(names.path(key)), all[index]);
        }
    }
    if (all.size() > mostShares) {
        const QString rest =
            ranking == Ranking::models ? shown("Übrige"_text) : shown("Übrige Projekte"_text);
        add(rest, rest, restOf(all));
    }
    bars->setRows(std::move(rows));
}

}  // namespace fleetwise
