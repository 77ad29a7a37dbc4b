#include "ui/settings/general_page.h"

#include "reactions/state_action.h"
#include "ui/base/interface_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSysInfo>

namespace fleetwise {

namespace {

/// The data of the entry that asks for a path. No path and no name of a program has a slash only.
const QString otherTerminal = QStringLiteral("/");

QString loginExplanation() {
    return shown("Fleetwise wartet dann im Tray, ohne ein Fenster zu öffnen."_text);
}

}  // namespace

GeneralPage::GeneralPage(FleetMonitor& givenMonitor, const SettingsServices& givenServices,
                         QWidget* parent)
    : SettingsPage(givenMonitor, parent), services(givenServices) {
    addLanguage();
    addStart();
    addTerminal();
    addHeading(shown("Einführung"_text));
    addNote(
        shown("Was Fleetwise liest und schreibt, und was du im Fenster und im Tray siehst."_text));
    connect(addButton(shown("Einführung zeigen"_text)), &QPushButton::clicked, this,
            &GeneralPage::onboardingWanted);
    addStretch();
}

QString GeneralPage::name() const {
    return shown("Allgemein"_text);
}

void GeneralPage::addLanguage() {
    addHeading(shown("Sprache"_text));
    // Each language in its own words, so that all find theirs.
    addChoice(shown("Sprache der Oberfläche"_text), Settings::language,
              {{shown("Wie der Desktop"_text), "system"},
               {QStringLiteral("Deutsch"), "de"},
               {QStringLiteral("English"), "en"},
               {QStringLiteral("Français"), "fr"},
               {QStringLiteral("Español"), "es"},
               {QStringLiteral("Italiano"), "it"},
               {QStringLiteral("Polski"), "pl"}});
}

void GeneralPage::addStart() {
    addHeading(shown("Start und Betrieb"_text));
    login = addPlainSwitch(shown("Beim Anmelden starten"_text), loginExplanation());
    loginFault = addFault();
    connect(login, &QCheckBox::toggled, this, &GeneralPage::setLoginStart);
    addSwitch(
        shown("Wach bleiben, solange gearbeitet wird"_text), Settings::staysAwake,
        shown(
            "Der Rechner geht nicht von selbst in den Ruhezustand, solange eine Sitzung arbeitet."_text));
    if (QSysInfo::kernelType() == QStringLiteral("darwin")) {
        addSwitch(shown("Kein Symbol im Dock"_text), Settings::hideDockIcon);
    }
}

void GeneralPage::addTerminal() {
    addHeading(shown("Terminal"_text));
    terminal = new QComboBox;
    addRow(shown("Sitzungen fortsetzen in"_text), terminal);
    connect(terminal, &QComboBox::activated, this, &GeneralPage::takeTerminalChoice);
    terminalPath = addField(shown("Programm"_text), QStringLiteral("/usr/bin/xterm"));
    connect(terminalPath.edit, &QLineEdit::editingFinished, this, &GeneralPage::takeTerminalPath);
    onRefresh([this] { showTerminal(); });
}

void GeneralPage::showEvent(QShowEvent* event) {
    SettingsPage::showEvent(event);
    showLoginStart();
    isTypingPath = false;
    const QSignalBlocker quiet(terminal);
    terminal->clear();
    terminal->addItem(shown("Automatisch"_text), QString());
    for (const std::string& program : services.terminals())
        terminal->addItem(qtText(program), qtText(program));
    terminal->addItem(shown("Anderes …"_text), otherTerminal);
    showTerminal();
}

void GeneralPage::setLoginStart(bool isOn) {
    const auto done = services.loginStart.set(isOn);
    setFault(loginFault, done ? QString() : qtText(done.error()));
    login->setAccessibleDescription(done ? loginExplanation() : loginFault->text());
    showLoginStart();
}

void GeneralPage::showLoginStart() {
    const QSignalBlocker quiet(login);
    login->setChecked(services.loginStart.isOn());
}

void GeneralPage::showTerminal() {
    if (isTypingPath || terminalPath.edit->hasFocus()) return;
    const QString stored = qtText(monitor.settings().get(Settings::terminalPath));
    const int known = terminal->findData(stored);
    const bool isOther = known < 0;
    terminal->setCurrentIndex(isOther ? terminal->count() - 1 : known);
    terminalPath.row->setVisible(isOther);
    if (isOther && terminalPath.fault->text().isEmpty()) terminalPath.edit->setText(stored);
}

void GeneralPage::takeTerminalChoice() {
    const QString chosen = terminal->currentData().toString();
    setFault(terminalPath, {});
    isTypingPath = chosen == otherTerminal;
    terminalPath.row->setVisible(isTypingPath);
    if (!isTypingPath) return monitor.change(Settings::terminalPath, chosen.toStdString());
    terminalPath.edit->setFocus();
    terminalPath.edit->selectAll();
}

void GeneralPage::takeTerminalPath() {
    if (terminalPath.row->isHidden()) return;
    const QString typed = terminalPath.edit->text().trimmed();
    const std::string path = typed.toStdString();
    const bool isProgram = typed.startsWith(u'/') && StateAction::lookAtDisk(path).isExecutable;
    if (!typed.isEmpty() && !isProgram) {
        return setFault(terminalPath,
                        shown("Das ist kein Programm. Schreibe seinen vollen Pfad."_text));
    }
    setFault(terminalPath, {});
    // Who looks for the path in another window comes back to the field.
    if (typed.isEmpty() && !isActiveWindow()) return;
    isTypingPath = false;
    if (typed.isEmpty()) return showTerminal();
    if (path != monitor.settings().get(Settings::terminalPath)) {
        monitor.change(Settings::terminalPath, path);
    }
}

}  // namespace fleetwise
