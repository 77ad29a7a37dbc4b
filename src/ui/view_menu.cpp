#include "ui/view_menu.h"

#include "monitor/fleet_monitor.h"
#include "ui/interface_text.h"

#include <QActionGroup>
#include <QMenu>

namespace fleetwise {

namespace {

void addSwitch(QMenu* menu, FleetMonitor& monitor, const QString& text,
               const Setting<bool>& setting) {
    QAction* action = menu->addAction(text);
    action->setCheckable(true);
    action->setChecked(monitor.settings().get(setting));
    QObject::connect(action, &QAction::toggled, menu,
                     [&monitor, &setting](bool isOn) { monitor.change(setting, isOn); });
}

void addAppearances(QMenu* menu, FleetMonitor& monitor) {
    const std::string current = monitor.settings().get(Settings::appearanceMode);
    auto* choices = new QActionGroup(menu);
    const auto add = [&](const QString& text, const char* mode) {
        QAction* action = choices->addAction(text);
        action->setCheckable(true);
        action->setChecked(current == mode);
        menu->addAction(action);
        QObject::connect(action, &QAction::triggered, menu,
                         [&monitor, mode] { monitor.change(Settings::appearanceMode, mode); });
    };
    add(shown("Wie der Desktop"_text), "system");
    add(shown("Hell"_text), "light");
    add(shown("Dunkel"_text), "dark");
}

void fill(QMenu* menu, FleetMonitor& monitor) {
    menu->clear();
    addSwitch(menu, monitor, shown("Ruhende Sitzungen zeigen"_text), Settings::showDormant);
    addSwitch(menu, monitor, shown("Codex zeigen"_text), Settings::showsCodex);
    addSwitch(menu, monitor, shown("Selbstgesteuerte zusammenfassen"_text),
              Settings::summarizeSelfDriven);
    menu->addSeparator();
    const auto dismissed = monitor.settings().get(Settings::dismissedSessionIds).size();
    menu->addAction(shown("Entfernte wieder zeigen (%d)"_text, dismissed), menu,
                    [&monitor] { monitor.clearDismissed(); })
        ->setEnabled(dismissed > 0);
    menu->addSeparator();
    addAppearances(menu, monitor);
}

}  // namespace

QMenu* makeViewMenu(FleetMonitor& monitor, QWidget* parent) {
    auto* menu = new QMenu(parent);
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, &monitor] { fill(menu, monitor); });
    return menu;
}

}  // namespace fleetwise
