#include "fleet/session_usage.h"

#include "fleet/project_names.h"
#include "localisation/day_format.h"
#include "localisation/localisation.h"
#include "localisation/number_format.h"
#include "session/model_name.h"

#include <utility>

namespace fleetwise {

namespace {

/// By the list where the session is in it, else by the archive.
void describe(SessionUsage& usage, const Session* listed, const ArchiveEntry* archived) {
    Session unknown;
    unknown.id = usage.id;
    if (listed == nullptr && archived != nullptr) {
        usage.name = archived->displayName();
    } else {
        usage.name = (listed != nullptr ? *listed : unknown).displayName();
    }
    if (listed != nullptr) usage.lastActivityAt = listed->lastActivityAt;
    if (!usage.lastActivityAt && archived != nullptr) {
        usage.lastActivityAt = archived->lastActivityAt;
    }
}

std::int64_t countOf(const SessionUsage& session, SessionColumn column) {
    const TokenTally& tally = session.figures.tally;
    switch (column) {
        case SessionColumn::requests:
            return session.figures.requests;
        case SessionColumn::input:
            return tally.input;
        case SessionColumn::output:
            return tally.output;
        default:
            return saturatingSum(tally.cacheRead, tally.cacheWrites());
    }
}

FigureTable::Cell dateCell(const std::optional<Date>& date, Calendar calendar) {
    if (!date) return {};
    const std::string day = formatDate(*date, calendar, "%Y-%m-%d");
    const std::string time = formatDate(*date, calendar, "%H:%M");
    return {.text = dayText(day) + ' ' + time,
            .number = secondsSince1970(*date),
            .plain = day + ' ' + time};
}

}  // namespace

std::vector<SessionUsage> sessionUsages(
    const UsageSources& sources, const std::function<CostFigures(const std::string& id)>& figures) {
    const UsageDirectory directory(sources);
    std::vector<SessionUsage> all;
    for (const auto& [id, cost] : sources.costs) {
        if (directory.isPartOfAnother(id)) continue;
        CostFigures own = figures(id);
        if (own.tally.all() == 0 && !own.billed.usd) continue;
        all.push_back({.id = id,
                       .folder = directory.folder(id),
                       .agent = cost->agent,
                       .model = displayModelName(cost->lastModel.value_or("")),
                       .figures = std::move(own)});
        describe(all.back(), directory.listed(id), directory.archived(id));
    }
    return all;
}

bool isWanted(SessionColumn column, UsageColumns columns) {
    using enum SessionColumn;
    if (column == cost) return columns.money;
    if (column == input || column == output || column == cache) return columns.tokens;
    return true;
}

std::string headingOf(SessionColumn column) {
    switch (column) {
        case SessionColumn::name:
            return localised("Sitzung"_text);
        case SessionColumn::project:
            return localised("Projekt"_text);
        case SessionColumn::agent:
            return localised("Agent"_text);
        case SessionColumn::model:
            return localised("Modell"_text);
        case SessionColumn::requests:
            return localised("Anfragen"_text);
        case SessionColumn::input:
            return localised("Eingabe"_text);
        case SessionColumn::output:
            return localised("Ausgabe"_text);
        case SessionColumn::cache:
            return localised("Cache"_text);
        case SessionColumn::cost:
            return localised("Kosten"_text);
        case SessionColumn::lastActivity:
            break;
    }
    return localised("Zuletzt"_text);
}

bool isFigure(SessionColumn column) {
    return column >= SessionColumn::requests;
}

std::optional<double> figureOf(const SessionUsage& session, SessionColumn column,
                               MoneyBasis basis) {
    if (!isFigure(column)) return {};
    if (column == SessionColumn::cost) return session.figures.money(basis).usd;
    if (column != SessionColumn::lastActivity) return static_cast<double>(countOf(session, column));
    if (!session.lastActivityAt) return {};
    return secondsSince1970(*session.lastActivityAt);
}

FigureTable::Cell cellOf(const SessionUsage& session, SessionColumn column,
                         const SessionCellRules& rules) {
    switch (column) {
        case SessionColumn::name:
            return {.text = session.name};
        case SessionColumn::project:
            return {.text = ProjectNames({}, rules.home).name(session.folder),
                    .plain = ProjectNames({}, rules.home).path(session.folder)};
        case SessionColumn::agent:
            return {.text = session.agent.label()};
        case SessionColumn::model:
            return {.text = session.model};
        case SessionColumn::cost:
            return moneyCell(session.figures.money(rules.basis));
        case SessionColumn::lastActivity:
            return dateCell(session.lastActivityAt, rules.calendar);
        default:
            return {.text = shortNumber(countOf(session, column)),
                    .number = figureOf(session, column, rules.basis)};
    }
}

FigureTable sessionUsageTable(const std::vector<SessionUsage>& sessions, UsageColumns columns,
                              const SessionCellRules& rules) {
    FigureTable table{.title = localised("Verbrauch je Sitzung"_text)};
    std::vector<SessionColumn> wanted;
    for (const SessionColumn column : allSessionColumns) {
        if (!isWanted(column, columns)) continue;
        wanted.push_back(column);
        table.headings.push_back(column == SessionColumn::cost
                                     ? localised("Kosten in US-Dollar"_text)
                                     : headingOf(column));
    }
    for (const SessionUsage& session : sessions) {
        FigureTable::Row row;
        for (const SessionColumn column : wanted)
            row.push_back(cellOf(session, column, rules));
        table.rows.push_back(std::move(row));
    }
    return table;
}

}  // namespace fleetwise
