#include "app/session_report.h"

#include "app/cost_report.h"
#include "app/quota_report.h"
#include "app/report_block.h"
#include "foundation/text.h"
#include "localisation/duration_format.h"
#include "localisation/number_format.h"
#include "session/permission_mode.h"
#include "session/session_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace fleetwise {

namespace {

constexpr std::size_t messageLimit = 200;
constexpr std::string_view unknownHost = "Fenster unbekannt";

std::string stateText(const Session& session, Date now) {
    const auto since = session.elapsedReference();
    const std::string duration =
        since && now > *since ? fmt::format(", seit {}", durationText(now - *since)) : "";
    return fmt::format("{} ({}){}", label(session.state), rawValue(session.state), duration);
}

std::string agentText(const Session& session) {
    std::string text = fmt::format("{}, {}", session.agent.label(), label(session.origin));
    if (session.pid) text += fmt::format(", Prozess {}", *session.pid);
    if (session.isSelfDriven()) text += ", selbstgesteuert";
    return text;
}

std::string hostText(const Session& session) {
    if (session.hostApp) return *session.hostApp;
    return session.isLive ? std::string(unknownHost) : std::string();
}

std::string permissionText(const Session& session) {
    if (!session.permissionMode) return {};
    const auto known = PermissionMode::label(session.permissionMode);
    return known ? fmt::format("{} ({})", *known, *session.permissionMode)
                 : *session.permissionMode;
}

std::string eventText(const Session& session, Date now) {
    std::string text = session.lastEvent.value_or(std::string());
    if (session.lastTool) text += (text.empty() ? "" : " · ") + *session.lastTool;
    if (session.activity) text += (text.empty() ? "" : " · ") + *session.activity;
    if (!text.empty() && session.lastEventAt && now > *session.lastEventAt) {
        text += fmt::format(", vor {}", durationText(now - *session.lastEventAt));
    }
    return text;
}

std::string taskText(const TaskListStore::Progress& tasks) {
    std::string text = fmt::format("{} gesamt, {} laufend", tasks.total, tasks.inProgress);
    if (tasks.completed > 0) text += fmt::format(", {} erledigt", tasks.completed);
    if (tasks.activeForm) text += " – " + *tasks.activeForm;
    return text;
}

std::string backgroundText(const BackgroundTask& task) {
    std::string text = task.command.value_or(task.id);
    switch (task.status) {
        case BackgroundTask::Status::running:
            text += "  läuft";
            break;
        case BackgroundTask::Status::completed:
            text += "  beendet";
            break;
        case BackgroundTask::Status::failed:
        case BackgroundTask::Status::aborted:
            text += "  abgebrochen";
            break;
        case BackgroundTask::Status::orphaned:
            text += "  verwaist";
            break;
    }
    if (task.exitStatus) text += fmt::format("  exit {}", *task.exitStatus);
    return text;
}

void addBackground(ReportBlock& block, const Session& session) {
    if (session.backgroundTasks.empty()) return;
    block.line("Hintergrund",
               fmt::format("{} laufend, {} im Hintergrund", session.runningBackgroundTasks().size(),
                           session.backgroundTasks.size()));
    for (const BackgroundTask& task : session.backgroundTasks) {
        block.continued(backgroundText(task));
    }
}

void addStatistics(ReportBlock& block, const Session& session) {
    if (!session.stats) return;
    const auto& stats = *session.stats;
    const double fill = session.contextFill({}).value_or(0);
    std::string text = fmt::format("    Statistik: Kontext {} % von {}", std::lround(fill * 100),
                                   groupedNumber(session.contextLimit({})));
    // Of a rollout only the ends are read, so nothing in it is counted.
    if (!session.agent.isCodex()) {
        text +=
            fmt::format(", {} Antworten, {} Tool-Aufrufe", stats.assistantTurns, stats.toolCalls);
    }
    block.verbatim(text + fmt::format(", Ausgabe {}", groupedNumber(stats.outputTokens)));
    if (!stats.countsAreComplete && session.agent.isClaude()) {
        block.verbatim("    nur Tail gelesen (Transcript zu groß)");
    }
}

}  // namespace

std::string sessionReport(const Session& session, const Diagnostics& diagnostics) {
    const Date now = diagnostics.now;
    ReportBlock block;
    block.verbatim(fmt::format("{}{} — {}", session.isFavorite ? "★ " : "", label(session.state),
                               session.displayName()));
    block.line("ID", session.id);
    block.line("Zustand", stateText(session, now));
    block.line("Detail", session.detail(now, diagnostics.calendar));
    block.line("Pfad", session.displayPath(diagnostics.home));
    block.line("Branch", session.gitBranch.value_or(std::string()));
    block.line("Agent", agentText(session));
    block.line("Fenster", hostText(session));
    block.line("Modell", session.model.value_or(std::string()));
    block.line("Modus", permissionText(session));
    block.line("Ereignis", eventText(session, now));
    if (session.lastMessage) {
        block.line("Nachricht", shortenedText(*session.lastMessage, messageLimit));
    }
    if (session.desktopError) {
        block.line("Fehler",
                   SessionError::label(*session.desktopError).value_or(*session.desktopError));
    }
    if (session.tasks) block.line("Aufgaben", taskText(*session.tasks));
    addBackground(block, session);
    for (const auto& watch : session.monitors) {
        block.line("Überwacht",
                   fmt::format("{}, seit {}", watch.label, durationText(now - watch.since)));
    }
    block.line("Ziel", goalReport(diagnostics, session.id));
    block.line("Verbund", session.federationId.value_or(std::string()));
    addStatistics(block, session);
    if (const auto found = diagnostics.costs.find(session.id); found != diagnostics.costs.end()) {
        addCosts(block, *found->second, diagnostics.costs, diagnostics.prices);
    }
    if (diagnostics.collection.titledByDesktop.contains(session.id)) {
        block.verbatim("    Titel aus Desktop-Store: " +
                       printable(session.title.value_or(std::string())));
    }
    return block.text;
}

}  // namespace fleetwise
