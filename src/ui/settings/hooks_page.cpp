#include "ui/settings/hooks_page.h"

#include "ui/base/hook_text.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/settings/page_labels.h"
#include "ui/settings/path_row.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <utility>

namespace fleetwise {

namespace {

using HookState = FleetMonitor::HookState;

struct StateWords {
    QString name;
    QString meaning;
};

StateWords stateWords(HookState state, bool isOutdated) {
    if (state == HookState::unknown) return {shown("Wird geprüft …"_text), {}};
    if (state == HookState::missing) {
        return {
            shown("Nicht eingerichtet"_text),
            shown(
                "Ohne den Hook erfährt Fleetwise nur alle paar Sekunden, was Claude Code tut, und nicht, was es dich fragt."_text)};
    }
    if (isOutdated) {
        return {
            shown("Veraltet"_text),
            shown(
                "Das Hook-Programm ist von einer anderen Version und ließ sich nicht erneuern. Es arbeitet weiter; richte es neu ein, damit es zu dieser Version passt."_text)};
    }
    return {shown("Eingerichtet"_text),
            shown("Claude Code meldet Fleetwise sofort, was es tut und was es dich fragt."_text)};
}

QString removalText(const HookInstaller::Places& places) {
    return shown(
        "Entfernt werden die Einträge von Fleetwise in %@. Die alte Datei wird vorher nach %@ gesichert. Einträge anderer Programme und das Hook-Programm selbst bleiben."_text,
        places.settingsFile, places.stateDir);
}

QPushButton* makeHookButton(const QString& text) {
    auto* button = new QPushButton(text);
    button->setAutoDefault(false);
    return button;
}

QHBoxLayout* makeButtonLine(QWidget* parent) {
    auto* line = parent != nullptr ? new QHBoxLayout(parent) : new QHBoxLayout;
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(Metrics::gap);
    return line;
}

}  // namespace

HooksPage::HooksPage(FleetMonitor& givenMonitor, const SettingsServices& givenServices,
                     QWidget* parent)
    : SettingsPage(givenMonitor, parent), services(givenServices) {
    addHeading(shown("Hook in Claude Code"_text));
    addState();
    addConfirmation();
    addPlaces();
    addStretch();
    ask({});
    onRefresh([this] { showState(); });
}

QString HooksPage::name() const {
    return shown("Hook"_text);
}

void HooksPage::addState() {
    state = new QLabel;
    state->setFont(emphasisedFont(state->font()));
    addWide(state);
    stateNote = addNote({});
    problem = addFault();
    offers = new QWidget;
    auto* line = makeButtonLine(offers);
    installButton = makeHookButton(shown("Hook einrichten …"_text));
    removeButton = makeHookButton(shown("Hook entfernen …"_text));
    line->addWidget(installButton);
    line->addWidget(removeButton);
    line->addStretch(1);
    connect(installButton, &QPushButton::clicked, this, [this] { ask(Change::install); });
    connect(removeButton, &QPushButton::clicked, this, [this] { ask(Change::remove); });
    addWide(offers);
}

void HooksPage::addConfirmation() {
    confirmation = new QWidget;
    consequences = makePageText();
    consequences->setTextInteractionFlags(Qt::TextSelectableByMouse);
    proceedButton = makeHookButton({});
    auto* cancel = makeHookButton(shown("Abbrechen"_text));
    auto* lines = new QVBoxLayout(confirmation);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(Metrics::gap);
    lines->addWidget(consequences);
    auto* line = makeButtonLine(nullptr);
    line->addWidget(proceedButton);
    line->addWidget(cancel);
    line->addStretch(1);
    lines->addLayout(line);
    connect(proceedButton, &QPushButton::clicked, this, &HooksPage::proceed);
    connect(cancel, &QPushButton::clicked, this, [this] {
        const Change before = *asked;
        ask({});
        (before == Change::install ? installButton : removeButton)->setFocus();
    });
    addWide(confirmation);
}

void HooksPage::addPlaces() {
    const auto& places = monitor.hookPlaces();
    addHeading(shown("Wo etwas steht"_text));
    const auto add = [this](const QString& purpose, const std::string& path) {
        addWide(new PathRow(purpose, qtText(path)));
    };
    add(shown("Einstellungen von Claude Code, mit den Einträgen von Fleetwise"_text),
        places.settingsFile);
    add(shown("Das Hook-Programm"_text), places.installedHook);
    add(shown("Was das Hook-Programm meldet"_text), places.statusDir);
    addHeading(shown("Sicherungen"_text));
    add(shown("Ordner der Sicherungen"_text), places.stateDir);
    noBackups = addNote(shown(
        "Noch keine. Vor jeder Änderung wird hier gesichert, was in den Einstellungen von Claude Code stand."_text));
    backups = new QWidget;
    backupRows = new QVBoxLayout(backups);
    backupRows->setContentsMargins(0, 0, 0, 0);
    backupRows->setSpacing(Metrics::grid);
    addWide(backups);
}

void HooksPage::showEvent(QShowEvent* event) {
    SettingsPage::showEvent(event);
    showBackups();
}

void HooksPage::showState() {
    const HookState now = monitor.hookState();
    // A change of the hook may have left another copy.
    const bool isOutdated = monitor.isHookOutdated();
    const bool isChanging = monitor.isHookChanging();
    const std::tuple all(now, isOutdated, isChanging);
    if (std::exchange(shownState, all) != all) showBackups();
    const StateWords words = stateWords(now, isOutdated);
    state->setText(words.name);
    stateNote->setText(words.meaning);
    stateNote->setVisible(!words.meaning.isEmpty());
    const QString why = qtText(monitor.hookProblem());
    setFault(problem, why.isEmpty() ? QString()
                                    : shown("Die letzte Änderung am Hook ist gescheitert: %@"_text,
                                            monitor.hookProblem()));
    installButton->setVisible(now == HookState::missing ||
                              (now == HookState::installed && isOutdated));
    removeButton->setVisible(now == HookState::installed);
    for (QPushButton* button : {installButton, removeButton, proceedButton})
        button->setEnabled(!isChanging);
}

void HooksPage::showBackups() {
    const std::vector<std::string> found = services.settingsBackups();
    noBackups->setVisible(found.empty());
    backups->setVisible(!found.empty());
    if (std::exchange(shownBackups, found) == found) return;
    for (auto* old : backups->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        old->hide();
        old->deleteLater();
    }
    for (const std::string& path : found)
        backupRows->addWidget(new PathRow({}, qtText(path)));
}

void HooksPage::ask(std::optional<Change> change) {
    asked = change;
    confirmation->setVisible(change.has_value());
    offers->setVisible(!change.has_value());
    if (!change) return;
    const auto& places = monitor.hookPlaces();
    const bool installs = *change == Change::install;
    consequences->setText(installs ? hookExplanation(places) : removalText(places));
    proceedButton->setText(installs ? shown("Einrichten"_text) : shown("Entfernen"_text));
    proceedButton->setFocus();
}

void HooksPage::proceed() {
    const Change change = *asked;
    ask({});
    if (change == Change::install) {
        monitor.installHook();
    } else {
        monitor.removeHook();
    }
}

}  // namespace fleetwise
