#include "app/diagnostics.h"
#include "app/quota_report.h"
#include "app/reaction_report.h"
#include "app/session_report.h"
#include "fleet/cost_texts.h"
#include "foundation/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace fleetwise {

namespace {

using Output = std::back_insert_iterator<std::string>;

void printDirectories(Output out, const Diagnostics& diagnostics) {
    fmt::format_to(out, "Registry   {}\n", printable(diagnostics.registryDirectory));
    fmt::format_to(out, "Status:    {}\n", printable(diagnostics.statusDirectory));
    fmt::format_to(out, "Desktop:   {}\n", printable(diagnostics.desktopDirectory));
    fmt::format_to(out, "Codex:     {}\n", printable(diagnostics.codexDirectory));
    fmt::format_to(out, "Hooks:     {}\n",
                   diagnostics.hooksInstalled ? "installiert" : "NICHT installiert");
}

void printLanguages(Output out, const Diagnostics& diagnostics) {
    const auto& [preferred, setting, language] = diagnostics.language;
    fmt::format_to(out, "Sprachen   {}\n",
                   preferred.empty() ? "keine angegeben"
                                     : printable(fmt::format("{}", fmt::join(preferred, ", "))));
    fmt::format_to(out, "           gewählt: {}   Oberfläche: {}\n", printable(setting), language);
    fmt::format_to(out,
                   "           Sparkle: nicht vorhanden   Aktualisierung: keine, dieses "
                   "Programm enthält kein Update-Framework\n");
}

void printPrices(Output out, const Diagnostics& diagnostics) {
    fmt::format_to(out, "Preise:    {}\n", printable(priceBookText(diagnostics.prices)));
    if (!diagnostics.priceVerdict) return;
    const std::string verdict = verdictText(*diagnostics.priceVerdict, diagnostics.prices);
    if (!verdict.empty()) fmt::format_to(out, "           {}\n", printable(verdict));
}

void printTimings(Output out, const Diagnostics& diagnostics) {
    fmt::format_to(out, "Sammlung:  {:.0f} ms warm  ({:.0f} ms beim ersten Mal)\n",
                   diagnostics.warmMilliseconds, diagnostics.firstMilliseconds);
    auto timings = diagnostics.timings;
    std::stable_sort(timings.begin(), timings.end(), [](const auto& left, const auto& right) {
        return left.second > right.second;
    });
    for (const auto& [phase, milliseconds] : timings) {
        fmt::format_to(out, "           {:6.1f} ms  {}\n", milliseconds, phase);
    }
    if (!diagnostics.watchesFolders) {
        fmt::format_to(out,
                       "           Überwachung: Grenze des Systems erreicht, Änderungen zeigen "
                       "sich erst beim nächsten Durchgang (alle 5 s)\n");
    }
    if (const auto& codex = diagnostics.collection.codexFiles;
        codex.sessions + codex.branches + codex.compressed > 0) {
        fmt::format_to(out,
                       "           Codex: {} Sitzungen gelesen, dazu {} Abzweigungen und "
                       "Unteragenten; {} komprimierte Rollouts nicht geöffnet\n",
                       codex.sessions, codex.branches, codex.compressed);
    }
    for (const auto& [source, skipped] : diagnostics.collection.skipped) {
        fmt::format_to(out,
                       "           übersprungen: {} – {} keine gewöhnliche Datei, {} zu groß, "
                       "{} nicht lesbar, {} fehlerhaft\n",
                       source, skipped.notRegular, skipped.tooLarge, skipped.unreadable,
                       skipped.malformed);
    }
}

void printStalls(Output out, const Diagnostics& diagnostics) {
    if (diagnostics.stalls.empty()) {
        fmt::format_to(out, "Hänger:    keine aufgezeichnet\n");
        return;
    }
    fmt::format_to(out, "Hänger:    {} aufgezeichnet, jüngste zuerst\n", diagnostics.stalls.size());
    for (auto stall = diagnostics.stalls.rbegin(); stall != diagnostics.stalls.rend(); ++stall) {
        const std::string processor =
            stall->cpu ? fmt::format(", davon {:.1f} s Rechenzeit", stall->cpu->count()) : "";
        fmt::format_to(out, "           {}  {:.1f} s{}  bei {} Sitzungen\n",
                       formatDate(stall->at, diagnostics.calendar, "%d.%m.%Y %H:%M:%S"),
                       stall->seconds.count(), processor, stall->sessions);
    }
}

void printSummary(Output out, const std::vector<Session>& sessions) {
    if (sessions.empty()) {
        fmt::format_to(out, "Keine laufenden Sessions gefunden.\n");
        return;
    }
    const auto counted = [&](auto predicate) {
        return std::count_if(sessions.begin(), sessions.end(), predicate);
    };
    const auto resting =
        counted([](const Session& session) { return session.state == SessionState::dormant; });
    const auto needy =
        counted([](const Session& session) { return demandsAttention(session.state); });
    fmt::format_to(out, "{} aktiv, {} ruhend, {} brauchen Aufmerksamkeit\n",
                   std::ssize(sessions) - resting, resting, needy);
}

}  // namespace

std::string diagnosticReport(const Diagnostics& diagnostics) {
    std::string report;
    const Output out(report);
    fmt::format_to(out, "Fleetwise — Diagnose\n\n");
    printDirectories(out, diagnostics);
    printLanguages(out, diagnostics);
    printPrices(out, diagnostics);
    report += quotaReport(diagnostics);
    report += reactionReport(diagnostics);
    printTimings(out, diagnostics);
    printStalls(out, diagnostics);
    fmt::format_to(
        out, "Hook-Kopie: {}\n\n",
        diagnostics.hookIsCurrent ? "aktuell" : "VERALTET — beim nächsten Start erneuert");
    for (const Session& session : diagnostics.collection.sessions) {
        report += sessionReport(session, diagnostics);
        report += '\n';
    }
    printSummary(out, diagnostics.collection.sessions);
    report += codexQuotaReport(diagnostics);
    return report;
}

}  // namespace fleetwise
