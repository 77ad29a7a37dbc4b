#include "ui/fleet/session_menu.h"

#include "foundation/text.h"
#include "monitor/fleet_monitor.h"
#include "ui/base/interface_text.h"
#include "ui/fleet/goal_dialog.h"

#include <QActionGroup>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>

#include <algorithm>
#include <functional>
#include <optional>

namespace fleetwise {

namespace {

using Anchor = NotificationPolicy::Anchor;

void copyText(const std::string& text) {
    QGuiApplication::clipboard()->setText(qtText(text));
}

std::vector<const Session*> listedSessions(const FleetMonitor& monitor,
                                           const std::vector<std::string>& ids) {
    std::vector<const Session*> sessions;
    for (const std::string& id : ids) {
        if (const Session* found = monitor.session(id)) sessions.push_back(found);
    }
    return sessions;
}

/// Copies what `textOf` gives of each session, a line each and none twice.
void copyOfEach(const FleetMonitor& monitor, const std::vector<std::string>& ids,
                const std::function<std::string(const Session&)>& textOf) {
    QStringList lines;
    for (const Session* session : listedSessions(monitor, ids))
        lines << qtText(textOf(*session));
    lines.removeAll(QString());
    lines.removeDuplicates();
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

/// The choices for one anchor, of which the one that was made is checked. `otherwise` says what
/// holds without one.
void addNotifyChoices(QMenu* menu, FleetMonitor& monitor, Anchor anchor, const Session& session,
                      const QString& otherwise) {
    const auto current = monitor.notifyOverride(anchor, session.id);
    auto* group = new QActionGroup(menu);
    const auto add = [&](const QString& text, std::optional<bool> choice) {
        QAction* action = group->addAction(text);
        action->setCheckable(true);
        action->setChecked(choice == current);
        menu->addAction(action);
        QObject::connect(action, &QAction::triggered, menu,
                         [&monitor, anchor, id = session.id, choice] {
                             monitor.setNotifyOverride(anchor, id, choice);
                         });
    };
    add(otherwise, {});
    add(shown("Melden"_text), true);
    add(shown("Stumm"_text), false);
}

void addNotifyMenu(QMenu* menu, FleetMonitor& monitor, const Session& session) {
    QMenu* choices = menu->addMenu(shown("Mitteilungen"_text));
    const bool hasProject = NotificationPolicy::key(Anchor::project, {}, session.cwd).has_value();
    choices->addSection(shown("Diese Sitzung"_text));
    addNotifyChoices(choices, monitor, Anchor::session, session,
                     hasProject ? shown("Wie das Projekt"_text) : shown("Wie voreingestellt"_text));
    if (!hasProject) return;
    // An ampersand would become an underline.
    choices->addSection(
        shown("Projekt %@"_text, session.projectName()).replace(u'&', QStringLiteral("&&")));
    addNotifyChoices(choices, monitor, Anchor::project, session, shown("Wie voreingestellt"_text));
}

}  // namespace

void showSessionMenu(FleetMonitor& monitor, const std::string& sessionId, QWidget* parent,
                     const QPoint& globalPosition, const std::function<void()>& activated) {
    const Session* session = monitor.session(sessionId);
    if (session == nullptr) return;
    auto* menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString& text, const QKeySequence& key, auto action) {
        QAction* added = menu->addAction(text, menu, std::move(action));
        added->setShortcut(key);
        return added;
    };
    const auto copy = [&](const QString& text, const std::string& copied) {
        add(text, {}, [copied] { copyText(copied); });
    };
    const auto atReturn = [](bool isMeant) {
        return isMeant ? QKeySequence(Qt::Key_Return) : QKeySequence();
    };
    add(shown("Fenster nach vorn"_text), atReturn(session->isLive),
        [&monitor, sessionId, activated] {
            monitor.focus(sessionId);
            activated();
        })
        ->setEnabled(session->isLive);
    add(shown("Fortsetzen"_text), atReturn(!session->isLive), [&monitor, sessionId, activated] {
        monitor.resume(sessionId);
        activated();
    })->setEnabled(!session->isLive);
    add(shown("Befehl zum Fortsetzen kopieren"_text), {}, [&monitor, sessionId] {
        if (const auto text = monitor.resumeText(sessionId)) copyText(*text);
    });
    menu->addSeparator();
    add(session->isFavorite ? shown("Nicht mehr anheften"_text) : shown("Anheften"_text), Qt::Key_F,
        [&monitor, sessionId] { monitor.toggleFavorite(sessionId); });
    add(shown("Ziel …"_text), Qt::Key_G,
        [&monitor, sessionId, parent] { openGoalDialog(monitor, sessionId, parent->window()); });
    add(monitor.mayNotify(*session) ? shown("Stumm schalten"_text) : shown("Nicht mehr stumm"_text),
        Qt::Key_M, [&monitor, sessionId] { monitor.toggleNotifying(sessionId); });
    addNotifyMenu(menu, monitor, *session);
    add(shown("Aus der Liste entfernen"_text), Qt::Key_Delete,
        [&monitor, sessionId] { monitor.dismiss(sessionId); });
    menu->addSeparator();
    if (session->cwd) copy(shown("Pfad kopieren"_text), printable(*session->cwd));
    copy(shown("Sitzungs-ID kopieren"_text), sessionId);
    copy(shown("Verbund-Marke kopieren"_text), monitor.handoffMark(sessionId));
    menu->popup(globalPosition);
}

void showSelectionMenu(FleetMonitor& monitor, const std::vector<std::string>& ids, QWidget* parent,
                       const QPoint& globalPosition) {
    const auto sessions = listedSessions(monitor, ids);
    if (ids.size() == 1) showSessionMenu(monitor, ids.front(), parent, globalPosition);
    if (ids.size() == 1 || sessions.empty()) return;
    auto* menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addSection(shownCount(static_cast<std::int64_t>(sessions.size()), "%d Sitzung"_text,
                                "%d Sitzungen"_text));
    const auto add = [&](const QString& text, const QKeySequence& key, auto action) {
        menu->addAction(text, menu, std::move(action))->setShortcut(key);
    };
    const auto mayNotify = [&](const Session* each) { return monitor.mayNotify(*each); };
    const bool arePinned = std::ranges::all_of(sessions, &Session::isFavorite);
    const bool areHeard = std::ranges::any_of(sessions, mayNotify);
    add(arePinned ? shown("Nicht mehr anheften"_text) : shown("Anheften"_text), Qt::Key_F,
        [&monitor, ids] { monitor.toggleFavorites(ids); });
    add(areHeard ? shown("Stumm schalten"_text) : shown("Nicht mehr stumm"_text), Qt::Key_M,
        [&monitor, ids] { monitor.toggleNotifyingOf(ids); });
    add(shown("Aus der Liste entfernen"_text), Qt::Key_Delete,
        [&monitor, ids] { monitor.dismissAll(ids); });
    menu->addSeparator();
    add(shown("Pfade kopieren"_text), {}, [&monitor, ids] {
        copyOfEach(monitor, ids,
                   [](const Session& session) { return printable(session.cwd.value_or("")); });
    });
    add(shown("Sitzungs-IDs kopieren"_text), {}, [&monitor, ids] {
        copyOfEach(monitor, ids, [](const Session& session) { return session.id; });
    });
    add(shown("Befehle zum Fortsetzen kopieren"_text), {}, [&monitor, ids] {
        copyOfEach(monitor, ids, [&monitor](const Session& session) {
            return monitor.resumeTextOfPast(session).value_or(std::string());
        });
    });
    menu->popup(globalPosition);
}

}  // namespace fleetwise
