#include "ui/usage/session_usage_model.h"

#include "fleet/cost_texts.h"
#include "foundation/text.h"
#include "ui/base/interface_text.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

SessionColumn columnAt(int section) {
    return allSessionColumns.at(static_cast<std::size_t>(section));
}

QVariant sideOf(SessionColumn column) {
    const bool isAtRight = isFigure(column) && column != SessionColumn::lastActivity;
    return QVariant::fromValue(Qt::AlignVCenter | (isAtRight ? Qt::AlignRight : Qt::AlignLeft));
}

/// The sessions are ascending by id.
bool holds(const auto& sessions, const std::string& id, auto idOf) {
    return std::ranges::binary_search(sessions, id, {}, idOf);
}

}  // namespace

SessionUsageModel::Row SessionUsageModel::made(SessionUsage session) {
    std::string text;
    for (const std::string& part :
         {session.name, session.folder, session.agent.label(), session.model, session.id})
        text += part + '\n';
    Row row{.session = std::move(session), .folded = caseFolded(text), .texts = {}};
    for (std::size_t column = 0; column < row.texts.size(); ++column)
        row.texts.at(column) = qtText(cellOf(row.session, allSessionColumns.at(column), {}).text);
    return row;
}

void SessionUsageModel::setSessions(std::vector<SessionUsage> sessions) {
    if (rows.empty()) {
        beginResetModel();
        for (SessionUsage& session : sessions)
            rows.push_back(made(std::move(session)));
        endResetModel();
        return;
    }
    removeGone(sessions);
    insertNew(sessions);
    updateContents(std::move(sessions));
}

void SessionUsageModel::setRules(SessionCellRules newRules) {
    const bool isOther = newRules.basis != cellRules.basis || newRules.home != cellRules.home ||
                         newRules.calendar != cellRules.calendar;
    cellRules = std::move(newRules);
    if (isOther && !rows.empty()) {
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
}

void SessionUsageModel::removeGone(const std::vector<SessionUsage>& wanted) {
    const auto isGone = [&](int row) { return !holds(wanted, session(row).id, &SessionUsage::id); };
    for (int last = rowCount() - 1; last >= 0; --last) {
        if (!isGone(last)) continue;
        int first = last;
        while (first > 0 && isGone(first - 1))
            --first;
        beginRemoveRows({}, first, last);
        rows.erase(rows.begin() + first, rows.begin() + last + 1);
        endRemoveRows();
        last = first;
    }
}

void SessionUsageModel::insertNew(const std::vector<SessionUsage>& wanted) {
    for (std::size_t place = 0; place < wanted.size(); ++place) {
        const auto isNew = [&](std::size_t index) {
            return index < wanted.size() &&
                   (place == rows.size() || wanted[index].id < rows[place].session.id);
        };
        std::size_t end = place;
        while (isNew(end))
            ++end;
        if (end == place) continue;
        std::vector<Row> added;
        for (std::size_t index = place; index < end; ++index)
            added.push_back(made(wanted[index]));
        beginInsertRows({}, static_cast<int>(place), static_cast<int>(end) - 1);
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(place),
                    std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
        endInsertRows();
        place = end - 1;
    }
}

void SessionUsageModel::updateContents(std::vector<SessionUsage> wanted) {
    // One notice for rows that stand together: whoever sorts them does it once.
    for (std::size_t first = 0; first < rows.size(); ++first) {
        std::size_t end = first;
        while (end < rows.size() && !(rows[end].session == wanted[end])) {
            rows[end] = made(std::move(wanted[end]));
            ++end;
        }
        if (end == first) continue;
        emit dataChanged(index(static_cast<int>(first), 0),
                         index(static_cast<int>(end) - 1, columnCount() - 1));
        first = end;
    }
}

int SessionUsageModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows.size());
}

int SessionUsageModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(allSessionColumns.size());
}

QString SessionUsageModel::tooltip(const SessionUsage& session) const {
    QStringList lines{qtText(session.name)};
    const auto project = cellOf(session, SessionColumn::project, cellRules);
    if (!session.folder.empty()) lines << qtText(project.plain);
    lines << qtText(costExplanation(session.figures, cellRules.basis));
    return lines.join(u'\n');
}

QVariant SessionUsageModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const SessionColumn column = columnAt(index.column());
    const SessionUsage& shown = session(index.row());
    switch (role) {
        case Qt::DisplayRole:
            return isFigure(column) ? qtText(cellOf(shown, column, cellRules).text)
                                    : text(index.row(), column);
        case Qt::TextAlignmentRole:
            return sideOf(column);
        case Qt::ToolTipRole:
            return plainToolTip(tooltip(shown));
        default:
            return {};
    }
}

QVariant SessionUsageModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
    const SessionColumn column = columnAt(section);
    switch (role) {
        case Qt::DisplayRole:
            return qtText(headingOf(column));
        case Qt::TextAlignmentRole:
            return sideOf(column);
        case Qt::InitialSortOrderRole:
            return isFigure(column) ? Qt::DescendingOrder : Qt::AscendingOrder;
        default:
            return {};
    }
}

SessionUsageFilter::SessionUsageFilter(SessionUsageModel& given, QObject* parent)
    : QSortFilterProxyModel(parent), sessions(given) {
    setSourceModel(&given);
}

void SessionUsageFilter::setSearch(const QString& text) {
    words.clear();
    for (const QString& word : text.split(u' ', Qt::SkipEmptyParts))
        words.push_back(caseFolded(word.toStdString()));
    invalidateRowsFilter();
}

bool SessionUsageFilter::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    const SessionColumn column = columnAt(left.column());
    if (!isFigure(column)) {
        return QString::localeAwareCompare(sessions.text(left.row(), column),
                                           sessions.text(right.row(), column)) < 0;
    }
    const MoneyBasis basis = sessions.rules().basis;
    return figureOf(sessions.session(left.row()), column, basis) <
           figureOf(sessions.session(right.row()), column, basis);
}

bool SessionUsageFilter::filterAcceptsRow(int row, const QModelIndex&) const {
    const std::string& text = sessions.searchText(row);
    return std::ranges::all_of(
        words, [&](const std::string& word) { return text.find(word) != std::string::npos; });
}

}  // namespace fleetwise
