#include "ui/settings/appearance_page.h"

#include "cost/cost_figures.h"
#include "ui/base/interface_text.h"
#include "ui/settings/mark_preview.h"

#include <QComboBox>

namespace fleetwise {

AppearancePage::AppearancePage(FleetMonitor& givenMonitor, QWidget* parent)
    : SettingsPage(givenMonitor, parent) {
    addHeading(shown("Fenster"_text));
    addChoice(shown("Farben"_text), Settings::appearanceMode,
              {{shown("Wie der Desktop"_text), "system"},
               {shown("Hell"_text), "light"},
               {shown("Dunkel"_text), "dark"}});
    addChoice(shown("Zeilen der Liste"_text), Settings::density,
              {{shown("Einzeilig"_text), "compact"}, {shown("Zweizeilig"_text), "comfortable"}});
    addMark();
    addCosts();
    addStretch();
}

QString AppearancePage::name() const {
    return shown("Darstellung"_text);
}

void AppearancePage::addMark() {
    addHeading(shown("Zeichen im Tray"_text));
    auto* preview = new MarkPreview;
    addWide(preview);
    onRefresh([this, preview] { preview->setChoices(markChoices(monitor.settings())); });
    addSwitch(shown("Arbeitende Sitzungen"_text), Settings::markShowsWorking,
              shown("Ihre Zahl in der Mitte"_text));
    addSwitch(shown("5-Stunden-Fenster"_text), Settings::markShowsFiveHour,
              shown("Der äußere Ring"_text));
    addSwitch(shown("7-Tage-Fenster"_text), Settings::markShowsSevenDay,
              shown("Der innere Ring"_text));
    addSwitch(
        shown("Rücksetzung"_text), Settings::markShowsReset,
        shown(
            "Wann die fünf Stunden neu beginnen: als Kerbe im Ring, ohne Zahl in der Mitte als Text"_text));
    addNote(shown("Der Punkt erscheint immer, wenn eine Sitzung auf dich wartet."_text));
}

void AppearancePage::addCosts() {
    addHeading(shown("Kosten"_text));
    addChoice(shown("Kosten zeigen"_text), Settings::costDisplay,
              {{shown("Je Sitzung"_text), "session"},
               {shown("Nur Summen"_text), "total"},
               {shown("Aus"_text), "off"}});
    const auto named = [](MoneyBasis basis) { return std::string(rawValue(basis)); };
    addChoice(shown("Gerechnet als"_text), Settings::moneyBasis,
              {{shown("Abgerechnet"_text), named(MoneyBasis::billed)},
               {shown("API-Preis"_text), named(MoneyBasis::api)},
               {shown("Ohne Cache"_text), named(MoneyBasis::uncached)}});
}

}  // namespace fleetwise
