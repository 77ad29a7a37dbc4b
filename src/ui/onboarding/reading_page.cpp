#include "ui/onboarding/reading_page.h"

#include "ui/base/interface_text.h"
#include "ui/onboarding/onboarding_drawings.h"

#include <QGridLayout>

namespace fleetwise {

ReadingPage::ReadingPage(QWidget* parent)
    : OnboardingPage(shown("Was Fleetwise liest"_text), parent) {
    addBeside(
        new ProgramIcon,
        shown(
            "Fleetwise zeigt dir, was deine Coding-Agenten tun, was sie kosten und wer auf dich wartet. Dafür spricht es mit keinem von ihnen, sondern liest mit, was sie ohnehin schreiben:"_text));
    addGap();
    QGridLayout& table = *addTable();
    addTableRow(table, QStringLiteral("~/.claude"),
                shown("Sitzungen, Verläufe und Aufgaben von Claude Code"_text));
    addTableRow(table, QStringLiteral("~/.claude.json"),
                shown("dein Plan und dein Kontingent, sonst nichts daraus"_text));
    addTableRow(table, QStringLiteral("~/.codex"), shown("Sitzungen und Ziele von Codex"_text));
    addTableRow(table, shown("Claude-Desktop-App"_text),
                shown("ihre Sitzungen und das gemessene Kontingent"_text));
    addTableRow(table, shown("Deine Projekte"_text), shown("nur der Name des Branches"_text));
    addTableRow(table, shown("Laufende Programme"_text),
                shown("ob ein Agent noch läuft und in welchem Fenster"_text));
    addGap();
    addText(shown(
        "Nichts davon verlässt deinen Rechner, es sei denn, du trägst selbst einen Webhook ein. Gibt es eine Adresse für Preise und neue Versionen, fragt Fleetwise dort nur nach."_text));
}

}  // namespace fleetwise
