#include "ui/settings/action_log_model.h"

#include "ui/base/interface_text.h"
#include "ui/settings/action_words.h"
#include "ui/settings/literal_text.h"
#include "ui/settings/moment_text.h"
#include "ui/settings/state_icon.h"

#include <QWidget>

#include <algorithm>
#include <iterator>
#include <utility>

namespace fleetwise {

namespace {

QString endText(const ActionRunner::Entry& entry) {
    if (entry.failure) return qtText(*entry.failure);
    if (!entry.exitCode) return shown("Läuft"_text);
    if (*entry.exitCode == 0) return shown("Beendet"_text);
    return shown("Fehlercode %d"_text, *entry.exitCode);
}

QString commandText(const ActionRunner::Entry& entry) {
    // An action without a plan has its whole command there.
    std::string words =
        entry.failure ? entry.executable : entry.executable.substr(entry.executable.rfind('/') + 1);
    for (const std::string& argument : entry.arguments)
        words += ' ' + argument;
    return literalText(words).remove(QChar(u'\u200B'));
}

}  // namespace

ActionLogModel::ActionLogModel(const FleetMonitor& givenMonitor, std::function<Date()> givenNow,
                               QWidget* owner)
    : QAbstractTableModel(owner),
      monitor(givenMonitor),
      now(std::move(givenNow)),
      glyphOwner(owner) {}

ActionLogModel::Run ActionLogModel::run(const ActionRunner::Entry& entry) const {
    const Session* listed = monitor.session(entry.sessionId);
    return {entry, qtText(listed != nullptr ? listed->displayName() : entry.sessionId)};
}

void ActionLogModel::dropGone(const std::deque<ActionRunner::Entry>& log) {
    const auto oldest = std::ranges::find_if(
        runs, [&](const Run& known) { return !log.empty() && known.entry.id == log.front().id; });
    const auto kept = oldest == runs.end() ? runs.begin() : std::next(oldest);
    if (kept == runs.end()) return;
    beginRemoveRows({}, static_cast<int>(kept - runs.begin()), rowCount() - 1);
    runs.erase(kept, runs.end());
    endRemoveRows();
}

void ActionLogModel::update(const std::deque<ActionRunner::Entry>& log) {
    dropGone(log);
    const std::size_t known = runs.size();
    for (std::size_t place = 0; place < known; ++place) {
        const std::size_t row = known - 1 - place;
        if (runs[row].entry.exitCode == log[place].exitCode) continue;
        runs[row].entry.exitCode = log[place].exitCode;
        const QModelIndex changed = index(static_cast<int>(row), ending);
        emit dataChanged(changed, changed);
    }
    if (log.size() == known) return;
    beginInsertRows({}, 0, static_cast<int>(log.size() - known) - 1);
    for (std::size_t place = known; place < log.size(); ++place)
        runs.push_front(run(log[place]));
    endInsertRows();
}

int ActionLogModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(runs.size());
}

int ActionLogModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QString ActionLogModel::text(const Run& logged, int column) const {
    const ActionRunner::Entry& entry = logged.entry;
    switch (column) {
        case time:
            return qtText(momentText(entry.at, now(), monitor.calendar()));
        case state:
            return qtText(shortLabel(entry.state));
        case session:
            return logged.session;
        case program:
            return commandText(entry);
        default:
            return endText(entry);
    }
}

QVariant ActionLogModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Run& shownRun = runs[static_cast<std::size_t>(index.row())];
    const ActionRunner::Entry& entry = shownRun.entry;
    if (role == Qt::DisplayRole) return text(shownRun, index.column());
    if (role == Qt::DecorationRole && index.column() == state && glyphOwner != nullptr)
        return stateIcon(entry.state, *glyphOwner);
    if (role != Qt::ToolTipRole && role != Qt::AccessibleDescriptionRole) return {};
    const QString whole = index.column() == program
                              ? planLines({entry.executable, entry.arguments}).join(u'\n')
                              : text(shownRun, index.column());
    return role == Qt::ToolTipRole ? plainToolTip(whole) : whole;
}

QVariant ActionLogModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole) return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return {};
    switch (section) {
        case time:
            return shown("Zeit"_text);
        case state:
            return shown("Zustand"_text);
        case session:
            return shown("Sitzung"_text);
        case program:
            return shown("Programm"_text);
        default:
            return shown("Ergebnis"_text);
    }
}

}  // namespace fleetwise
