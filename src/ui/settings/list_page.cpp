#include "ui/settings/list_page.h"

#include "ui/base/interface_text.h"
#include "ui/base/window_system.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

namespace fleetwise {

namespace {

constexpr int mostListedDays = 365;
constexpr int mostGraceMinutes = 24 * 60;

}  // namespace

ListPage::ListPage(FleetMonitor& givenMonitor, QWidget* parent)
    : SettingsPage(givenMonitor, parent) {
    addOrder();
    addSessions();
    addRemoved();
    addUsage();
    addStretch();
}

QString ListPage::name() const {
    return shown("Liste"_text);
}

void ListPage::addOrder() {
    addHeading(shown("Ordnung"_text));
    const auto choices = [](const auto& modes) {
        std::vector<Choice> all;
        for (const auto mode : modes)
            all.push_back({qtText(label(mode)), std::string(rawValue(mode))});
        return all;
    };
    addChoice(shown("Gruppieren nach"_text), Settings::groupMode, choices(allGroupModes));
    addChoice(shown("Sortieren nach"_text), Settings::sortMode, choices(allSortModes));
    addSwitch(shown("Selbstgesteuerte zusammenfassen"_text), Settings::summarizeSelfDriven,
              shown("In einer eigenen Gruppe, die zugeklappt beginnt"_text));
    addSwitch(shown("Details neben der Liste"_text), Settings::showsDetails);
}

void ListPage::addSessions() {
    addHeading(shown("Sitzungen"_text));
    addSwitch(shown("Codex zeigen"_text), Settings::showsCodex);
    const QCheckBox* dormant =
        addSwitch(shown("Ruhende Sitzungen zeigen"_text), Settings::showDormant);
    QSpinBox* days = addNumber(shown("Tage, die Ruhende in der Liste bleiben"_text),
                               Settings::dormantRetentionDays, 0, mostListedDays, {});
    days->setSpecialValueText(shown("unbegrenzt"_text));
    onRefresh([days, dormant] { days->setEnabled(dormant->isChecked()); });
    addNumber(
        shown("Minuten, nach denen eine fertige oder abgebrochene Sitzung als bereit gilt"_text),
        Settings::doneGraceMinutes, 0, mostGraceMinutes, {});
}

void ListPage::addRemoved() {
    addHeading(shown("Entfernte Sitzungen"_text));
    QLabel* count = addNote({});
    QPushButton* list = addButton(shown("Wieder in die Liste aufnehmen"_text));
    connect(list, &QPushButton::clicked, this, [this] { monitor.clearDismissed(); });
    onRefresh([this, count, list] {
        const auto removed = monitor.settings().get(Settings::dismissedSessionIds).size();
        count->setText(removed == 0
                           ? shown("Du hast keine Sitzung aus der Liste entfernt."_text)
                           : shownCount(static_cast<std::int64_t>(removed),
                                        "Du hast %d Sitzung aus der Liste entfernt."_text,
                                        "Du hast %d Sitzungen aus der Liste entfernt."_text));
        list->setEnabled(removed > 0);
    });
}

void ListPage::addUsage() {
    addHeading(shown("Nutzung"_text));
    addSwitch(shown("Kontingent zeigen"_text), Settings::usageShowsQuota);
    addSwitch(shown("Tokens zeigen"_text), Settings::usageShowsTokens);
    addSwitch(shown("Geld zeigen"_text), Settings::usageShowsMoney);
    if (isWayland()) return;
    addSwitch(shown("Fenster »Nutzung« über anderen Fenstern halten"_text), Settings::usagePinned);
}

}  // namespace fleetwise
