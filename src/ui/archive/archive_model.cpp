#include "ui/archive/archive_model.h"

#include "fleet/cost_texts.h"
#include "foundation/text.h"
#include "localisation/number_format.h"
#include "ui/base/interface_text.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

/// The places in the order of what `key` makes of each; the latest activity goes first among
/// equals.
template <typename Key>
void sortByKey(std::vector<std::size_t>& places, Qt::SortOrder order, Key&& key) {
    using Keyed = std::pair<decltype(key(std::size_t{})), std::size_t>;
    std::vector<Keyed> keyed;
    keyed.reserve(places.size());
    for (const std::size_t place : places)
        keyed.emplace_back(key(place), place);
    std::ranges::stable_sort(keyed, [order](const Keyed& left, const Keyed& right) {
        return order == Qt::AscendingOrder ? left.first < right.first : right.first < left.first;
    });
    std::ranges::transform(keyed, places.begin(), &Keyed::second);
}

/// Figures stand at the right.
int alignmentOf(int column) {
    const bool isText = column <= ArchiveModel::projectColumn;
    return static_cast<int>((isText ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
}

/// The clock of a monitor stands while nobody looks.
Date presentOf(const FleetMonitor& monitor) {
    return std::max(monitor.clock(), monitor.lastRefresh());
}

}  // namespace

ArchiveModel::ArchiveModel(FleetMonitor& givenMonitor, ArchiveIndex& givenIndex)
    : monitor(givenMonitor),
      archive(givenIndex),
      days(monitor.calendar(), presentOf(monitor)),
      shownRows(matching()) {
    archive.addObserver(*this);
    monitor.addObserver(*this);
}

ArchiveModel::~ArchiveModel() {
    monitor.removeObserver(*this);
    archive.removeObserver(*this);
}

void ArchiveModel::setActive(bool isNowActive) {
    if (std::exchange(isActive, isNowActive) || !isNowActive) return;
    clockTicked();
    if (isStale) update();
}

void ArchiveModel::setSearch(const QString& query) {
    ArchiveSearch wanted(query.toStdString());
    if (wanted == search) return;
    search = std::move(wanted);
    update();
}

void ArchiveModel::setAgents(Agents wanted) {
    if (std::exchange(agents, wanted) != wanted) update();
}

void ArchiveModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= columnEnd) return;
    sortColumn = static_cast<Column>(column);
    sortOrder = order;
    update();
}

void ArchiveModel::update() {
    isStale = !isActive;
    if (isStale) return;
    std::vector<Row> rows = matching();
    if (std::ranges::equal(rows, shownRows, {}, &Row::id, &Row::id)) {
        shownRows = std::move(rows);
        rowsDiffer(nameColumn, costColumn);
        emit updated();
        return;
    }
    emit aboutToUpdate();
    replaceRows(std::move(rows));
    emit updated();
}

std::vector<ArchiveModel::Row> ArchiveModel::matching() {
    const auto& entries = archive.entries();
    std::vector<ArchiveDays::Time> times;
    std::vector<std::size_t> places;
    times.reserve(entries.size());
    for (std::size_t place = 0; place < entries.size(); ++place) {
        const ArchiveEntry& each = entries[place];
        const auto& time = times.emplace_back(days.at(each.lastActivityAt));
        if (agents == Agents::claude && !each.agent.isClaude()) continue;
        if (agents == Agents::codex && !each.agent.isCodex()) continue;
        if (search.isEmpty() ||
            search.matches(each.searchText, time.day->searchText, time.clock())) {
            places.push_back(place);
        }
    }
    arrange(places);
    std::vector<Row> rows;
    rows.reserve(places.size());
    for (const std::size_t place : places)
        rows.push_back({entries[place].id, times[place]});
    return rows;
}

/// Puts the places in the archive, which has the latest first, in the order that is asked for.
void ArchiveModel::arrange(std::vector<std::size_t>& places) {
    const auto& entries = archive.entries();
    switch (sortColumn) {
        case nameColumn:
            return sortByKey(places, sortOrder, [&](std::size_t place) {
                return std::string_view(entries[place].searchText);
            });
        case projectColumn:
            return sortByKey(places, sortOrder, [&](std::size_t place) {
                return caseFolded(entries[place].projectName());
            });
        case sizeColumn:
            return sortByKey(places, sortOrder,
                             [&](std::size_t place) { return entries[place].sizeBytes; });
        case costColumn:
            return sortByKey(places, sortOrder, [&](std::size_t place) {
                return money(entries[place].id).usd.value_or(-1);
            });
        case dateColumn:
        case columnEnd:
            if (sortOrder == Qt::AscendingOrder) std::ranges::reverse(places);
            return;
    }
}

/// What stands at the beginning and at the end of both keeps its rows.
void ArchiveModel::replaceRows(std::vector<Row> rows) {
    const auto isSame = [](const Row& left, const Row& right) { return left.id == right.id; };
    const auto first =
        std::mismatch(shownRows.begin(), shownRows.end(), rows.begin(), rows.end(), isSame).first -
        shownRows.begin();
    const auto shorter = static_cast<std::ptrdiff_t>(std::min(shownRows.size(), rows.size()));
    std::ptrdiff_t tail = 0;
    while (tail < shorter - first && isSame(shownRows[shownRows.size() - 1 - std::size_t(tail)],
                                            rows[rows.size() - 1 - std::size_t(tail)])) {
        ++tail;
    }
    const auto oldEnd = static_cast<std::ptrdiff_t>(shownRows.size()) - tail;
    const auto newEnd = static_cast<std::ptrdiff_t>(rows.size()) - tail;
    if (oldEnd > first) {
        beginRemoveRows({}, static_cast<int>(first), static_cast<int>(oldEnd) - 1);
        shownRows.erase(shownRows.begin() + first, shownRows.begin() + oldEnd);
        endRemoveRows();
    }
    if (newEnd > first) {
        beginInsertRows({}, static_cast<int>(first), static_cast<int>(newEnd) - 1);
        shownRows = std::move(rows);
        endInsertRows();
    } else {
        shownRows = std::move(rows);
    }
    rowsDiffer(nameColumn, costColumn);
}

void ArchiveModel::rowsDiffer(Column first, Column last) {
    if (shownRows.empty()) return;
    emit dataChanged(createIndex(0, first), createIndex(rowCount() - 1, last));
}

void ArchiveModel::costsChanged() {
    amounts.clear();
    if (!isActive || sortColumn == costColumn) {
        update();
    } else {
        rowsDiffer(costColumn, costColumn);
        emit updated();
    }
}

void ArchiveModel::fleetChanged() {
    if (isActive) {
        rowsDiffer(nameColumn, nameColumn);
    } else {
        isStale = true;
    }
}

void ArchiveModel::clockTicked() {
    const Date now = presentOf(monitor);
    if (!isActive || days.isToday(now)) return;
    // The rows that are replaced refer to the days of before.
    const ArchiveDays before = std::exchange(days, ArchiveDays(monitor.calendar(), now));
    update();
}

const Money& ArchiveModel::money(const std::string& id) const {
    const auto known = amounts.find(id);
    if (known != amounts.end()) return known->second;
    const MoneyBasis basis = moneyBasisFrom(monitor.settings().get(Settings::moneyBasis));
    return amounts.emplace(id, monitor.figures({id}).money(basis)).first->second;
}

const ArchiveEntry* ArchiveModel::entry(const QModelIndex& at) const {
    if (!at.isValid()) return nullptr;
    return archive.entry(shownRows[static_cast<std::size_t>(at.row())].id);
}

QModelIndex ArchiveModel::indexOf(const std::string& id) const {
    const auto found = std::ranges::find(shownRows, id, &Row::id);
    if (found == shownRows.end()) return {};
    return createIndex(static_cast<int>(found - shownRows.begin()), 0);
}

std::vector<std::string> ArchiveModel::ids() const {
    std::vector<std::string> all;
    all.reserve(shownRows.size());
    for (const Row& row : shownRows)
        all.push_back(row.id);
    return all;
}

ArchiveModel::Totals ArchiveModel::totals() const {
    Totals totals{.sessions = shownRows.size()};
    for (const Row& row : shownRows) {
        if (const ArchiveEntry* found = archive.entry(row.id)) totals.bytes += found->sizeBytes;
    }
    return totals;
}

std::optional<SessionState> ArchiveModel::liveState(const std::string& id) const {
    const Session* session = monitor.session(id);
    return session != nullptr && session->isLive ? std::optional(session->state) : std::nullopt;
}

int ArchiveModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shownRows.size());
}

int ArchiveModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnEnd;
}

QVariant ArchiveModel::data(const QModelIndex& at, int role) const {
    const ArchiveEntry* found = entry(at);
    if (found == nullptr) return {};
    const Row& row = shownRows[static_cast<std::size_t>(at.row())];
    switch (role) {
        case Qt::DisplayRole:
            return shownText(row, *found, at.column());
        case Qt::ToolTipRole:
            return plainToolTip(toolTip(*found, at.column()));
        case Qt::AccessibleTextRole:
            return spokenText(row, *found, at.column());
        case Qt::TextAlignmentRole:
            return alignmentOf(at.column());
        default:
            return {};
    }
}

QString ArchiveModel::shownText(const Row& row, const ArchiveEntry& entry, int column) const {
    switch (column) {
        case nameColumn:
            return qtText(entry.displayName());
        case projectColumn:
            return qtText(entry.projectName());
        case dateColumn:
            return row.time.day->text + u' ' + qtText(row.time.clock());
        case sizeColumn:
            return entry.path.empty() ? QString() : qtText(byteCountText(entry.sizeBytes));
        default:
            return qtText(costText(money(entry.id)));
    }
}

QString ArchiveModel::spokenText(const Row& row, const ArchiveEntry& entry, int column) const {
    if (column != nameColumn) return shownText(row, entry, column);
    QStringList parts{shownText(row, entry, column), qtText(entry.agent.label())};
    if (entry.origin == SessionOrigin::desktop) parts << qtText(label(entry.origin));
    if (const auto state = liveState(entry.id)) parts << qtText(label(*state));
    if (!entry.title.empty() && !entry.prompt.empty()) parts << qtText(entry.prompt);
    return parts.join(QStringLiteral(", "));
}

QString ArchiveModel::toolTip(const ArchiveEntry& entry, int column) const {
    switch (column) {
        case nameColumn:
            return qtText(entry.agent.label() + " · " + label(entry.origin));
        case projectColumn:
            return qtText(entry.asSession().displayPath(monitor.home()));
        case costColumn:
            return qtText(
                costExplanation(monitor.figures({entry.id}),
                                moneyBasisFrom(monitor.settings().get(Settings::moneyBasis))));
        default:
            return {};
    }
}

QVariant ArchiveModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnEnd) return {};
    if (role == Qt::TextAlignmentRole) return alignmentOf(section);
    if (role == Qt::InitialSortOrderRole) {
        return static_cast<int>(section <= projectColumn ? Qt::AscendingOrder
                                                         : Qt::DescendingOrder);
    }
    if (role != Qt::DisplayRole) return {};
    switch (section) {
        case nameColumn:
            return shown("Sitzung"_text);
        case projectColumn:
            return shown("Projekt"_text);
        case dateColumn:
            return shown("Zuletzt"_text);
        case sizeColumn:
            return shown("Größe"_text);
        default:
            return shown("Kosten"_text);
    }
}

}  // namespace fleetwise
