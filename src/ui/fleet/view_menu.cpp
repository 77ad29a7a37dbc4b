#include "ui/fleet/view_menu.h"

#include "monitor/fleet_monitor.h"
#include "ui/base/interface_text.h"
#include "ui/fleet/row_geometry.h"
#include "ui/fleet/window_keys.h"

#include <QActionGroup>
#include <QMenu>

#include <utility>

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

struct Choice {
    QString text;
    std::string_view value;
};

/// Actions of which one is chosen. A value that is none of theirs counts as the first.
void addChoices(QMenu* menu, FleetMonitor& monitor, const Setting<std::string_view>& setting,
                const std::vector<Choice>& choices) {
    const std::string current = monitor.settings().get(setting);
    auto* group = new QActionGroup(menu);
    for (const Choice& choice : choices) {
        QAction* action = group->addAction(choice.text);
        action->setCheckable(true);
        action->setChecked(current == choice.value || &choice == &choices.front());
        menu->addAction(action);
        QObject::connect(
            action, &QAction::triggered, menu,
            [&monitor, &setting, value = choice.value] { monitor.change(setting, value); });
    }
}

void addAppearances(QMenu* menu, FleetMonitor& monitor) {
    addChoices(menu, monitor, Settings::appearanceMode,
               {{shown("Wie der Desktop"_text), "system"},
                {shown("Hell"_text), "light"},
                {shown("Dunkel"_text), "dark"}});
}

void addCosts(QMenu* menu, FleetMonitor& monitor) {
    QMenu* costs = menu->addMenu(shown("Kosten"_text));
    addChoices(costs, monitor, Settings::costDisplay,
               {{shown("Je Sitzung"_text), "session"},
                {shown("Nur Summen"_text), "total"},
                {shown("Aus"_text), "off"}});
    costs->addSeparator();
    addChoices(costs, monitor, Settings::moneyBasis,
               {{shown("Abgerechnet"_text), rawValue(MoneyBasis::billed)},
                {shown("API-Preis"_text), rawValue(MoneyBasis::api)},
                {shown("Ohne Cache"_text), rawValue(MoneyBasis::uncached)}});
}

template <typename Modes>
void addModes(QMenu* menu, FleetMonitor& monitor, const QString& title, const Modes& modes,
              const Setting<std::string_view>& setting) {
    std::vector<Choice> choices;
    for (const auto mode : modes)
        choices.push_back({qtText(label(mode)), rawValue(mode)});
    addChoices(menu->addMenu(title), monitor, setting, choices);
}

/// All of the filter bar, which has not always room for it.
void addListLook(QMenu* menu, FleetMonitor& monitor) {
    QMenu* filters = menu->addMenu(shown("Filter"_text));
    const auto active = monitor.settings().listRules().filters;
    for (const ListFilter filter : allListFilters) {
        QAction* action = filters->addAction(qtText(label(filter)), filters,
                                             [&monitor, filter] { monitor.toggleFilter(filter); });
        action->setCheckable(true);
        action->setChecked(active.contains(filter));
    }
    addModes(menu, monitor, shown("Gruppieren nach"_text), allGroupModes, Settings::groupMode);
    addModes(menu, monitor, shown("Sortieren nach"_text), allSortModes, Settings::sortMode);
    QAction* density = menu->addAction(shown("Zweizeilig"_text));
    density->setCheckable(true);
    density->setChecked(densityFrom(monitor.settings().get(Settings::density)) ==
                        Density::comfortable);
    QObject::connect(density, &QAction::toggled, menu, [&monitor](bool isComfortable) {
        monitor.change(Settings::density,
                       rawValue(isComfortable ? Density::comfortable : Density::compact));
    });
}

/// The key is the window's; an action that had it as well would only take it away.
QString withKey(const QString& text, const QKeySequence& key) {
    return text + u'\t' + key.toString(QKeySequence::NativeText);
}

void addWindows(QMenu* menu, const ViewMenuActions& actions) {
    menu->addAction(withKey(shown("Nutzung"_text), usageKey), menu, actions.showUsage);
    menu->addAction(withKey(shown("Vorige Sitzungen"_text), archiveKey), menu, actions.showArchive);
    menu->addAction(withKey(shown("Einstellungen"_text), settingsKey), menu, actions.showSettings);
}

void fill(QMenu* menu, FleetMonitor& monitor, const ViewMenuActions& actions) {
    menu->clear();
    // What belongs to the actions without being theirs.
    qDeleteAll(menu->findChildren<QMenu*>());
    qDeleteAll(menu->findChildren<QActionGroup*>());
    addWindows(menu, actions);
    menu->addSeparator();
    QAction* details = menu->addAction(withKey(shown("Details zeigen"_text), detailsKey), menu,
                                       actions.toggleDetails);
    details->setCheckable(true);
    details->setChecked(monitor.settings().get(Settings::showsDetails));
    addListLook(menu, monitor);
    menu->addSeparator();
    addSwitch(menu, monitor, shown("Ruhende Sitzungen zeigen"_text), Settings::showDormant);
    addSwitch(menu, monitor, shown("Codex zeigen"_text), Settings::showsCodex);
    addSwitch(menu, monitor, shown("Selbstgesteuerte zusammenfassen"_text),
              Settings::summarizeSelfDriven);
    menu->addSeparator();
    addSwitch(menu, monitor, shown("Alle Mitteilungen stumm"_text), Settings::isMuted);
    addSwitch(menu, monitor, shown("Wach bleiben, solange gearbeitet wird"_text),
              Settings::staysAwake);
    menu->addSeparator();
    const auto dismissed = monitor.settings().get(Settings::dismissedSessionIds).size();
    menu->addAction(shown("Entfernte wieder zeigen (%d)"_text, dismissed), menu,
                    [&monitor] { monitor.clearDismissed(); })
        ->setEnabled(dismissed > 0);
    menu->addSeparator();
    addCosts(menu, monitor);
    addSwitch(menu, monitor, shown("Kontingent zeigen"_text), Settings::usageShowsQuota);
    menu->addSeparator();
    addAppearances(menu, monitor);
}

}  // namespace

QMenu* makeViewMenu(FleetMonitor& monitor, ViewMenuActions actions, QWidget* parent) {
    auto* menu = new QMenu(parent);
    QObject::connect(
        menu, &QMenu::aboutToShow, menu,
        [menu, &monitor, actions = std::move(actions)] { fill(menu, monitor, actions); });
    return menu;
}

}  // namespace fleetwise
