#include "ui/settings/notifications_page.h"

#include "ui/base/interface_text.h"
#include "ui/base/state_sign.h"
#include "ui/settings/notify_exceptions.h"

#include <QCheckBox>
#include <QSignalBlocker>

namespace fleetwise {

NotificationsPage::NotificationsPage(FleetMonitor& givenMonitor, QWidget* parent)
    : SettingsPage(givenMonitor, parent) {
    addGeneral();
    addStates();
    addExceptions();
    addStretch();
}

QString NotificationsPage::name() const {
    return shown("Mitteilungen"_text);
}

void NotificationsPage::addGeneral() {
    addHeading(shown("Mitteilungen"_text));
    addSwitch(shown("Mitteilungen zeigen"_text), Settings::notificationsEnabled);
    addSwitch(shown("Alles stumm"_text), Settings::isMuted,
              shown("Weder Mitteilungen noch Töne, bis du es wieder ausschaltest"_text));
    addSwitch(shown("Nicht für die Sitzung, die du gerade ansiehst"_text),
              Settings::sparesFocusedSession);
    addSwitch(shown("Wenn das 5-Stunden-Fenster neu beginnt"_text), Settings::notifiesWindowReset);
}

void NotificationsPage::addStates() {
    addHeading(shown("Melden, wenn eine Sitzung in diesen Zustand kommt"_text));
    for (const SessionState state : allSessionStates) {
        auto* sign = new StateSign(state);
        QCheckBox* box = addPlainSwitch(qtText(label(state)), {}, sign);
        connect(box, &QCheckBox::toggled, this,
                [this, state](bool isOn) { setNotifies(state, isOn); });
        onRefresh([this, box, state] {
            const QSignalBlocker quiet(box);
            box->setChecked(monitor.settings().storedNotifyingStates().contains(state));
            box->setEnabled(monitor.settings().get(Settings::notificationsEnabled));
        });
    }
}

void NotificationsPage::setNotifies(SessionState state, bool notifies) {
    // What names we do not know stays as it is.
    auto names = monitor.settings().get(Settings::notifyingStates);
    std::erase(names, std::string(rawValue(state)));
    if (notifies) names.emplace_back(rawValue(state));
    monitor.change(Settings::notifyingStates, names);
}

void NotificationsPage::addExceptions() {
    addHeading(shown("Ausnahmen"_text));
    addSwitch(
        shown("Sitzungen ohne Ausnahme melden"_text), Settings::newSessionsNotify,
        shown(
            "Ausgeschaltet melden sich nur Sitzungen und Projekte, für die unten »Melden« steht."_text));
    auto* exceptions = new NotifyExceptions(monitor);
    addWide(exceptions);
    onRefresh([this, exceptions] {
        exceptions->refresh();
        // Its rows come and go.
        keepFromWheel(exceptions);
    });
}

}  // namespace fleetwise
