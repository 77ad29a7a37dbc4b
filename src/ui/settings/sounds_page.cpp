#include "ui/settings/sounds_page.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QToolButton>

#include <algorithm>

namespace fleetwise {

SoundsPage::SoundsPage(FleetMonitor& givenMonitor, const SettingsServices& givenServices,
                       QWidget* parent)
    : SettingsPage(givenMonitor, parent), services(givenServices) {
    addHeading(shown("Töne"_text));
    const std::vector<std::string> available = services.sounds.available();
    addSound(shown("Eine Sitzung ist fertig"_text), Settings::doneSound, available);
    addSound(shown("Eine Sitzung fragt dich etwas"_text), Settings::waitingSound, available);
    addSound(shown("Das 5-Stunden-Fenster beginnt neu"_text), Settings::windowResetSound,
             available);
    if (available.empty()) {
        addNote(shown(
            "Auf diesem Rechner sind keine Töne des Desktops installiert. Unter Debian bringt sie das Paket sound-theme-freedesktop."_text));
    }
    QLabel* muted = addNote(
        shown("Zurzeit ist alles stumm, auch die Töne. Das änderst du bei den Mitteilungen."_text));
    onRefresh([this, muted] { muted->setVisible(monitor.settings().get(Settings::isMuted)); });
    addStretch();
}

QString SoundsPage::name() const {
    return shown("Töne"_text);
}

void SoundsPage::addSound(const QString& occasion, const Setting<std::string_view>& setting,
                          const std::vector<std::string>& available) {
    std::vector<Choice> choices{{shown("Kein Ton"_text), std::string(SoundPlayer::none)}};
    for (const std::string& name : available)
        choices.push_back({qtText(name), name});
    const std::string stored = monitor.settings().get(setting);
    if (std::ranges::find(choices, stored, &Choice::value) == choices.end()) {
        choices.push_back({shown("%@ (nicht installiert)"_text, stored), stored});
    }
    QComboBox* box = makeChoice(setting, std::move(choices));
    box->setAccessibleName(occasion);
    auto* play = new QToolButton;
    play->setText(shown("Anhören"_text));
    play->setAccessibleName(shown("Anhören: %@"_text, occasion.toStdString()));
    connect(play, &QToolButton::clicked, this, [this, &setting] {
        services.sounds.play(monitor.settings().get(setting), services.now());
    });
    onRefresh([this, play, &setting] {
        play->setEnabled(monitor.settings().get(setting) != SoundPlayer::none);
    });
    auto* both = new QWidget;
    auto* line = new QHBoxLayout(both);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(Metrics::gap);
    line->addWidget(box);
    line->addWidget(play);
    addRow(occasion, both);
}

}  // namespace fleetwise
