#include "ui/session_menu.h"

#include "monitor/fleet_monitor.h"
#include "ui/goal_dialog.h"
#include "ui/interface_text.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>

namespace fleetwise {

void showSessionMenu(FleetMonitor& monitor, const std::string& sessionId, QWidget* parent,
                     const QPoint& globalPosition) {
    const Session* session = monitor.session(sessionId);
    if (session == nullptr) return;
    auto* menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString& text, const QKeySequence& key, auto action) {
        menu->addAction(text, menu, std::move(action))->setShortcut(key);
    };
    const auto copy = [&](const QString& text, const std::string& copied) {
        add(text, {}, [copied] { QGuiApplication::clipboard()->setText(qtText(copied)); });
    };
    add(session->isLive ? shown("Fenster nach vorn"_text) : shown("Fortsetzen"_text),
        Qt::Key_Return, [&monitor, sessionId] { monitor.activate(sessionId); });
    menu->addSeparator();
    add(session->isFavorite ? shown("Nicht mehr anheften"_text) : shown("Anheften"_text), Qt::Key_F,
        [&monitor, sessionId] { monitor.toggleFavorite(sessionId); });
    add(shown("Ziel …"_text), Qt::Key_G,
        [&monitor, sessionId, parent] { openGoalDialog(monitor, sessionId, parent->window()); });
    add(shown("Aus der Liste entfernen"_text), Qt::Key_Delete,
        [&monitor, sessionId] { monitor.dismiss(sessionId); });
    menu->addSeparator();
    if (session->cwd) copy(shown("Pfad kopieren"_text), *session->cwd);
    copy(shown("Sitzungs-ID kopieren"_text), sessionId);
    copy(shown("Verbund-Marke kopieren"_text), monitor.handoffMark(sessionId));
    menu->popup(globalPosition);
}

}  // namespace fleetwise
