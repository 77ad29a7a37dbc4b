#include "ui/fleet/fleet_list_model.h"

#include "fleet/cost_texts.h"
#include "fleet/goal_texts.h"
#include "ui/base/interface_text.h"

#include <QSet>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

/// Ended sessions show how long ago they were active, in minutes at least.
constexpr Seconds restingStep{60};

/// Told apart from all other rows: a group's key might be a session's id.
QString identityOf(const SessionRow& row) {
    return (row.kind == SessionRow::Kind::heading ? u'#' : u'-') + row.key;
}

}  // namespace

FleetListModel::FleetListModel(FleetMonitor& givenMonitor,
                               std::function<std::vector<SessionGroup>()> givenGroups,
                               QObject* parent)
    : QAbstractListModel(parent),
      monitor(givenMonitor),
      groups(std::move(givenGroups)),
      costs(costDisplay(monitor.settings())) {
    update();
    monitor.addObserver(*this);
}

FleetListModel::~FleetListModel() {
    monitor.removeObserver(*this);
}

int FleetListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows.size());
}

QVariant FleetListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const SessionRow& shown = row(index);
    switch (role) {
        case Qt::DisplayRole:
            return shown.name;
        case Qt::ToolTipRole:
            return plainToolTip(tooltipOf(index));
        case Qt::AccessibleTextRole:
            return shown.spoken;
        case rowRole:
            return QVariant::fromValue(shown);
        case keyRole:
            return shown.key;
        case headingRole:
            return shown.kind == SessionRow::Kind::heading;
        default:
            return {};
    }
}

Qt::ItemFlags FleetListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    const Qt::ItemFlags usual = Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    return row(index).kind == SessionRow::Kind::heading ? usual : usual | Qt::ItemIsSelectable;
}

const SessionRow& FleetListModel::row(const QModelIndex& index) const {
    return rows[static_cast<std::size_t>(index.row())];
}

QModelIndex FleetListModel::indexOf(const QString& key) const {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const SessionRow& row) { return row.key == key; });
    return found == rows.end() ? QModelIndex()
                               : index(static_cast<int>(std::distance(rows.begin(), found)));
}

std::vector<std::string> FleetListModel::sessionsOf(const QModelIndex& index) const {
    const SessionRow& meant = row(index);
    if (meant.kind == SessionRow::Kind::session) return {meant.key.toStdString()};
    const auto all = groups();
    const auto group = std::ranges::find(all, meant.key.toStdString(), &SessionGroup::key);
    return group == all.end() ? std::vector<std::string>() : idsOf(*group);
}

std::vector<std::string> FleetListModel::idsOf(const SessionGroup& group) const {
    std::vector<std::string> ids;
    for (const std::size_t member : group.members)
        ids.push_back(monitor.sessions()[member].id);
    return ids;
}

void FleetListModel::toggleFolded(const QModelIndex& heading) {
    setFolded(heading, !row(heading).isFolded);
}

void FleetListModel::setFolded(const QModelIndex& heading, bool isFolded) {
    folded[row(heading).key.toStdString()] = isFolded;
    update();
}

void FleetListModel::unfoldGroupOf(const std::string& sessionId) {
    const auto isMeant = [&](std::size_t member) {
        return monitor.sessions()[member].id == sessionId;
    };
    for (const SessionGroup& group : groups()) {
        if (std::ranges::any_of(group.members, isMeant)) folded[group.key] = false;
    }
    update();
}

bool FleetListModel::isFolded(const SessionGroup& group) const {
    const auto decided = folded.find(group.key);
    return decided == folded.end() ? group.beginsFolded : decided->second;
}

SessionRow FleetListModel::rowOf(const Session& session) const {
    RowAdditions additions{.notice = monitor.notice(session.id),
                           .cost = {},
                           .goal = monitor.goal(session.id),
                           .goalLimits = {},
                           .isSilenced = !monitor.mayNotify(session)};
    if (costs.extent == CostDisplay::Extent::sessions) {
        additions.cost = costText(monitor.figures({session.id}).money(costs.basis));
    }
    if (const auto own = monitor.ownGoal(session.id)) additions.goalLimits = goalLimitsText(*own);
    return sessionRow(session, {monitor.clock(), monitor.calendar(), monitor.home()}, additions);
}

SessionRow FleetListModel::headingOf(const SessionGroup& group) const {
    std::string cost;
    if (costs.extent != CostDisplay::Extent::nothing) {
        cost = costText(monitor.figures(idsOf(group)).money(costs.basis));
    }
    return headingRow(group, isFolded(group), cost);
}

QString FleetListModel::tooltipOf(const QModelIndex& index) const {
    const SessionRow& shown = row(index);
    if (shown.cost.isEmpty()) return shown.tooltip;
    const QString explanation =
        qtText(costExplanation(monitor.figures(sessionsOf(index)), costs.basis));
    return shown.tooltip.isEmpty() ? explanation : shown.tooltip + u'\n' + explanation;
}

void FleetListModel::settingsChanged() {
    costs = costDisplay(monitor.settings());
    update();
}

std::vector<SessionRow> FleetListModel::rowsNow() const {
    std::vector<SessionRow> wanted;
    for (const SessionGroup& group : groups()) {
        wanted.push_back(headingOf(group));
        if (wanted.back().isFolded) continue;
        for (const std::size_t member : group.members)
            wanted.push_back(rowOf(monitor.sessions()[member]));
    }
    return wanted;
}

void FleetListModel::update() {
    auto wanted = rowsNow();
    removeGone(wanted);
    arrange(wanted);
    updateContents(std::move(wanted));
    updatedAt = monitor.clock();
}

void FleetListModel::updateTimes() {
    if (monitor.clock() - updatedAt >= restingStep) {
        update();
        return;
    }
    std::size_t position = 0;
    for (const SessionGroup& group : groups()) {
        ++position;
        if (isFolded(group)) continue;
        for (const std::size_t member : group.members) {
            const Session& session = monitor.sessions()[member];
            if (session.state != SessionState::dormant) replace(position, rowOf(session));
            ++position;
        }
    }
}

void FleetListModel::removeGone(const std::vector<SessionRow>& wanted) {
    QSet<QString> kept;
    for (const SessionRow& row : wanted)
        kept.insert(identityOf(row));
    for (int last = rowCount() - 1; last >= 0; --last) {
        const auto isGone = [&](int position) {
            return !kept.contains(identityOf(rows[static_cast<std::size_t>(position)]));
        };
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

void FleetListModel::arrange(const std::vector<SessionRow>& wanted) {
    QSet<QString> present;
    for (const SessionRow& row : rows)
        present.insert(identityOf(row));
    for (int position = 0; position < static_cast<int>(wanted.size());) {
        const QString identity = identityOf(wanted[static_cast<std::size_t>(position)]);
        if (!present.contains(identity)) {
            int end = position + 1;
            while (end < static_cast<int>(wanted.size()) &&
                   !present.contains(identityOf(wanted[static_cast<std::size_t>(end)])))
                ++end;
            beginInsertRows({}, position, end - 1);
            rows.insert(rows.begin() + position, wanted.begin() + position, wanted.begin() + end);
            endInsertRows();
            position = end;
        } else {
            moveHere(position, identity);
            ++position;
        }
    }
}

void FleetListModel::moveHere(int position, const QString& identity) {
    const auto begin = rows.begin() + position;
    const auto found = std::find_if(
        begin, rows.end(), [&](const SessionRow& row) { return identityOf(row) == identity; });
    if (found == begin) return;
    const int from = static_cast<int>(std::distance(rows.begin(), found));
    beginMoveRows({}, from, from, {}, position);
    std::rotate(begin, found, found + 1);
    endMoveRows();
}

void FleetListModel::updateContents(std::vector<SessionRow> wanted) {
    for (std::size_t position = 0; position < rows.size(); ++position)
        replace(position, std::move(wanted[position]));
}

void FleetListModel::replace(std::size_t position, SessionRow row) {
    if (rows[position] == row) return;
    rows[position] = std::move(row);
    const QModelIndex changed = index(static_cast<int>(position));
    emit dataChanged(changed, changed);
}

}  // namespace fleetwise
