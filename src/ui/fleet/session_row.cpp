#include "ui/fleet/session_row.h"

#include "fleet/goal_texts.h"
#include "localisation/duration_format.h"
#include "session/model_name.h"
#include "session/permission_mode.h"
#include "ui/base/interface_text.h"

#include <cmath>

namespace fleetwise {

namespace {

/// How long the state lasts; of an ended session how long ago it was active.
QString elapsedText(const Session& session, Date now) {
    const bool hasEnded = session.state == SessionState::dormant;
    const auto since = hasEnded ? session.lastActivityAt : session.elapsedReference();
    return since ? qtText(durationText(now - *since)) : QString();
}

QStringList badgesOf(const Session& session) {
    QStringList badges;
    if (session.subagentCount > 0 && session.state != SessionState::waitingForSubagents) {
        badges << shown("Agenten ×%d"_text, session.subagentCount);
    }
    if (const auto running = session.runningBackgroundTasks(); !running.empty()) {
        badges << shown("Hintergrund ×%d"_text, running.size());
    }
    if (session.tasks) {
        badges << QStringLiteral("%1/%2").arg(session.tasks->completed).arg(session.tasks->total);
    }
    if (const auto mode = PermissionMode::label(session.permissionMode)) badges << qtText(*mode);
    if (session.isSelfDriven()) badges << shown("selbstgesteuert"_text);
    return badges;
}

/// As short as can be, so that it stays where others fall away; the tooltip tells the rest. An own
/// goal counts as reached with its budget, which the percentage says better.
QString goalBadge(const GoalStore::Goal& goal) {
    if (goal.status == GoalStore::Status::complete && !goal.isOwn) return shown("Ziel ✓"_text);
    const auto share = goal.share();
    return share ? shown("Ziel %d %%"_text, static_cast<int>(*share * 100)) : shown("Ziel"_text);
}

QString hostOf(const Session& session) {
    if (session.hostApp) return qtText(*session.hostApp);
    return session.isLive ? shown("Fenster unbekannt"_text) : QString();
}

void addLine(QString& text, const QString& label, const QString& value) {
    if (value.isEmpty()) return;
    if (!text.isEmpty()) text += u'\n';
    text += label.isEmpty() ? value : label + QStringLiteral(": ") + value;
}

QString contextText(std::optional<double> fill) {
    return fill ? shown("%d %%"_text, std::lround(*fill * 100)) : QString();
}

QString tooltipOf(const SessionRow& row, const Session& session, const RowAdditions& additions) {
    QString text;
    addLine(text, {}, row.name);
    addLine(text, {}, row.stateLabel + (row.detail.isEmpty() ? "" : " — " + row.detail));
    addLine(text, shown("Pfad"_text), row.path);
    addLine(text, shown("Branch"_text), row.branch);
    addLine(text, shown("Anwendung"_text), row.host);
    addLine(text, shown("Agent"_text), qtText(session.agent.label()));
    addLine(text, shown("Modell"_text), row.model);
    addLine(text, shown("Kontext"_text), contextText(row.contextFill));
    addLine(text, shown("Zusätzlich"_text), row.badges.join(QStringLiteral(", ")));
    if (additions.goal) addLine(text, shown("Ziel"_text), qtText(goalText(*additions.goal)));
    addLine(text, shown("Grenzen"_text), qtText(additions.goalLimits));
    return text;
}

QString spokenOf(const SessionRow& row, const RowAdditions& additions) {
    QStringList parts{row.name, row.stateLabel};
    for (const QString& part :
         {row.detail, row.project, row.branch, row.host, row.model, row.elapsed}) {
        if (!part.isEmpty()) parts << part;
    }
    if (additions.goal) parts << shown("Ziel"_text) + u' ' + qtText(goalText(*additions.goal));
    parts << row.badges;
    if (row.contextFill) parts << shown("Kontext"_text) + u' ' + contextText(row.contextFill);
    if (!row.cost.isEmpty()) parts << shown("Kosten"_text) + u' ' + row.cost;
    if (row.isFavorite) parts << shown("Favorit"_text);
    return parts.join(QStringLiteral(", "));
}

}  // namespace

SessionRow sessionRow(const Session& session, const RowContext& context,
                      const RowAdditions& additions) {
    const auto& notice = additions.notice;
    SessionRow row;
    row.key = qtText(session.id);
    row.name = qtText(session.displayName());
    row.detail = qtText(notice ? *notice : session.detail(context.now, context.calendar));
    row.isNotice = notice.has_value();
    row.state = session.state;
    row.stateLabel = qtText(label(session.state));
    row.agentSymbol = qtText(std::string(session.agent.symbol()));
    row.path = qtText(session.displayPath(context.home));
    row.project = qtText(session.projectName());
    row.branch = qtText(session.gitBranch.value_or(""));
    row.host = hostOf(session);
    row.model = qtText(displayModelName(session.model.value_or("")));
    row.elapsed = elapsedText(session, context.now);
    if (additions.goal) {
        row.goal = goalBadge(*additions.goal);
        row.goalShare = additions.goal->share();
    }
    row.badges = badgesOf(session);
    if (additions.isSilenced) row.badges << shown("stumm"_text);
    row.contextFill = session.contextFill({});
    row.cost = qtText(additions.cost);
    row.isFavorite = session.isFavorite;
    row.isLive = session.isLive;
    row.isStale = session.isStale(context.now);
    row.tooltip = tooltipOf(row, session, additions);
    row.spoken = spokenOf(row, additions);
    return row;
}

SessionRow headingRow(const SessionGroup& group, bool isFolded, const std::string& cost) {
    SessionRow row;
    row.kind = SessionRow::Kind::heading;
    row.key = qtText(group.key);
    row.name = qtText(group.title);
    row.detail = qtText(group.detail);
    row.count = static_cast<int>(group.members.size());
    row.isFolded = isFolded;
    row.cost = qtText(cost);
    row.tooltip = row.detail;
    const std::string sessions = localisedCount(row.count, "%d Sitzung"_text, "%d Sitzungen"_text);
    row.spoken = isFolded ? shown("Gruppe %@, %@, eingeklappt"_text, group.title, sessions)
                          : shown("Gruppe %@, %@"_text, group.title, sessions);
    if (!row.cost.isEmpty())
        row.spoken += QStringLiteral(", ") + shown("Kosten"_text) + u' ' + row.cost;
    return row;
}

}  // namespace fleetwise
