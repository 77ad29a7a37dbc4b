#include "ui/details/detail_rows.h"

#include "fleet/goal_texts.h"
#include "foundation/text.h"
#include "localisation/duration_format.h"
#include "localisation/number_format.h"
#include "monitor/fleet_monitor.h"
#include "session/model_name.h"
#include "session/permission_mode.h"
#include "ui/base/interface_text.h"

#include <QStringList>

#include <cmath>
#include <map>

namespace fleetwise {

namespace {

using TaskStatus = TaskListStore::Status;

/// No line begins with what stands between the parts.
QString parted(QStringList parts) {
    parts.removeAll(QString());
    return parts.join(QStringLiteral("\u00a0· "));
}

QString oneLineOf(const std::optional<std::string>& text) {
    return text ? qtText(printable(trimmed(*text))) : QString();
}

QString sinceText(const std::optional<Date>& since, Date now) {
    return since ? qtText(durationText(now - *since)) : QString();
}

DetailRow taskRow(const SessionDetails::Task& task) {
    DetailRow row{.text = qtText(task.subject)};
    switch (task.status) {
        case TaskStatus::completed:
            row.sign = SessionState::done;
            row.signName = shown("Erledigt"_text);
            break;
        case TaskStatus::inProgress:
            row.sign = SessionState::working;
            row.signName = shown("In Arbeit"_text);
            break;
        case TaskStatus::pending:
            row.sign = SessionState::idle;
            row.signName = shown("Offen"_text);
            break;
    }
    return row;
}

QString failureText(const BackgroundTask& task) {
    if (task.exitStatus) return shown("Fehler %d"_text, *task.exitStatus);
    return task.status == BackgroundTask::Status::failed ? shown("Fehlgeschlagen"_text)
                                                         : shown("Mit der Sitzung beendet"_text);
}

DetailRow figureRow(const QString& name, std::int64_t count, bool isComplete) {
    const std::string number = groupedNumber(count);
    return {.text = name,
            .figure = isComplete ? qtText(number) : shown("mindestens %@"_text, number)};
}

DetailRow copyRow(const QString& name, const QString& value, const std::string& copied,
                  const QString& copyName) {
    return {.text = name, .detail = value, .copied = qtText(copied), .copyName = copyName};
}

/// With the home folder as "~".
QString shortPath(const std::string& path, const std::string& home) {
    Session place;
    place.cwd = path;
    return qtText(place.displayPath(home));
}

}  // namespace

QString sessionFacts(const FleetMonitor& monitor, const Session& session) {
    QStringList parts{qtText(session.agent.label())};
    if (session.model) parts << qtText(displayModelName(*session.model));
    parts << oneLineOf(session.effort);
    if (const auto mode = PermissionMode::label(session.permissionMode)) parts << qtText(*mode);
    parts << oneLineOf(session.hostApp) << qtText(session.projectName())
          << oneLineOf(session.gitBranch);
    if (session.isFavorite) parts << shown("Favorit"_text);
    if (!monitor.mayNotify(session)) parts << shown("stumm"_text);
    if (session.isSelfDriven()) parts << shown("selbstgesteuert"_text);
    return parted(parts);
}

QString stateText(const Session& session, Date now) {
    const std::string name = label(session.state);
    const bool hasEnded = session.state == SessionState::dormant;
    const auto since = hasEnded ? session.lastActivityAt : session.elapsedReference();
    if (!since) return qtText(name);
    const std::string elapsed = durationText(now - *since);
    return hasEnded ? shown("%@, zuletzt aktiv vor %@"_text, name, elapsed)
                    : shown("%@ seit %@"_text, name, elapsed);
}

std::vector<DetailRow> taskRows(const std::vector<SessionDetails::Task>& tasks) {
    std::vector<DetailRow> rows;
    for (const auto& task : tasks)
        rows.push_back(taskRow(task));
    return rows;
}

std::vector<DetailRow> backgroundRows(const Session& session, Date now, Calendar calendar) {
    std::vector<DetailRow> rows;
    if (session.wakeupAt) {
        rows.push_back(
            {.sign = SessionState::scheduled,
             .signName = shown("Geplant"_text),
             .text = shown("Weckt um %@"_text, formatDate(*session.wakeupAt, calendar, "%H:%M"))});
    }
    const auto add = [&](SessionState sign, const QString& name, const QString& text,
                         const QString& figure) {
        rows.push_back({.sign = sign, .signName = name, .text = text, .figure = figure});
    };
    for (const BackgroundTask& task : session.recentlyFailedBackgroundTasks(now))
        add(SessionState::failed, shown("Fehler"_text),
            oneLineOf(task.command ? task.command : task.id), failureText(task));
    for (const BackgroundTask& task : session.runningBackgroundTasks())
        add(SessionState::working, shown("Läuft"_text),
            oneLineOf(task.command ? task.command : task.id), sinceText(task.startedAt, now));
    for (const StatusStore::Watch& watch : session.monitors) {
        const QString text =
            watch.label.empty() ? shown("Beobachtung"_text) : oneLineOf(watch.label);
        add(SessionState::working, shown("Beobachtung"_text), text, sinceText(watch.since, now));
    }
    return rows;
}

std::vector<DetailRow> subagentRows(const std::vector<SessionDetails::Subagent>& subagents,
                                    std::int64_t running, Date now) {
    std::vector<DetailRow> rows;
    for (const auto& agent : subagents) {
        const QString kind = qtText(agent.kind);
        const QString description = qtText(agent.description);
        DetailRow row{.text = description.isEmpty() ? kind : description,
                      .figure = shown("vor %@"_text, durationText(now - agent.lastActivityAt)),
                      .detail = description.isEmpty() ? QString() : kind};
        if (row.text.isEmpty()) row.text = shown("Unteragent"_text);
        // Nothing but the number tells which of those without an end still work: the latest ones.
        const bool works = !agent.isFinished && running-- > 0;
        row.sign = agent.isFinished ? SessionState::done
                   : works          ? SessionState::working
                                    : SessionState::unknown;
        row.signName = agent.isFinished ? shown("Fertig"_text)
                       : works          ? shown("Läuft"_text)
                                        : shown("Ohne Abschluss"_text);
        rows.push_back(row);
    }
    return rows;
}

std::vector<DetailRow> durationRows(const std::vector<TimelineSpan>& spans) {
    std::map<SessionState, Seconds> durations;
    for (const TimelineSpan& span : spans)
        durations[span.state] += span.until - span.from;
    std::vector<DetailRow> rows;
    for (const auto& [state, duration] : durations) {
        rows.push_back({.sign = state,
                        .text = qtText(label(state)),
                        .figure = qtText(durationText(duration))});
    }
    return rows;
}

std::vector<DetailRow> contextRows(const Session& session) {
    const auto fill = session.contextFill({});
    if (!fill) return {};
    return {{.text = shown("Kontext"_text),
             .figure = shown("%d %%"_text, std::lround(*fill * 100)),
             .detail = shown("%@ von %@ Tokens"_text, groupedNumber(session.stats->contextTokens),
                             groupedNumber(session.contextLimit({})))}};
}

std::vector<DetailRow> countRows(const Session& session) {
    if (!session.stats) return {};
    std::vector<DetailRow> rows;
    const auto& stats = *session.stats;
    const auto add = [&](const QString& name, std::int64_t count) {
        if (count > 0) rows.push_back(figureRow(name, count, stats.countsAreComplete));
    };
    add(shown("Antworten"_text), stats.assistantTurns);
    add(shown("Werkzeugaufrufe"_text), stats.toolCalls);
    add(shown("Tokens der Ausgabe"_text), stats.outputTokens);
    return rows;
}

std::vector<DetailRow> goalRows(const FleetMonitor& monitor, const std::string& sessionId) {
    const auto goal = monitor.goal(sessionId);
    if (!goal) return {};
    QStringList parts;
    if (goal->status != GoalStore::Status::active) parts << qtText(goalStatusText(goal->status));
    parts << qtText(goalProgressText(*goal));
    if (auto own = monitor.ownGoal(sessionId)) {
        own->tokenBudget.reset();  // the progress tells it
        parts << qtText(goalLimitsText(*own));
    }
    const QString objective = oneLineOf(goal->objective);
    return {
        {.text = objective.isEmpty() ? shown("Ziel"_text) : objective, .detail = parted(parts)}};
}

std::vector<DetailRow> placeRows(const Session& session, const SessionDetails& details,
                                 const std::string& resumeText, const std::string& home) {
    std::vector<DetailRow> rows;
    if (session.cwd) {
        rows.push_back(copyRow(shown("Pfad"_text), qtText(session.displayPath(home)), *session.cwd,
                               shown("Pfad kopieren"_text)));
    }
    if (details.transcriptPath) {
        rows.push_back(copyRow(shown("Transkript"_text), shortPath(*details.transcriptPath, home),
                               *details.transcriptPath,
                               shown("Pfad des Transkripts kopieren"_text)));
    }
    rows.push_back(copyRow(shown("Sitzungs-ID"_text), oneLineOf(session.id), session.id,
                           shown("Sitzungs-ID kopieren"_text)));
    if (!resumeText.empty()) {
        rows.push_back(copyRow(shown("Befehl zum Fortsetzen"_text), oneLineOf(resumeText),
                               resumeText, shown("Befehl zum Fortsetzen kopieren"_text)));
    }
    return rows;
}

std::vector<DetailRow> stateRows(const std::vector<const Session*>& sessions) {
    std::map<SessionState, int> counts;
    for (const Session* session : sessions)
        ++counts[session->state];
    std::vector<DetailRow> rows;
    for (const auto& [state, count] : counts) {
        rows.push_back(
            {.sign = state, .text = qtText(label(state)), .figure = QString::number(count)});
    }
    return rows;
}

}  // namespace fleetwise
