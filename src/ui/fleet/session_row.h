#pragma once

#include "fleet/session.h"
#include "fleet/session_groups.h"
#include "usage/goal_store.h"

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>

namespace fleetwise {

/// What one row of the list shows, ready to be painted: a heading or a session.
struct SessionRow {
    enum class Kind { heading, session };

    Kind kind = Kind::session;
    QString key;      ///< of the group, or the session's id
    QString name;     ///< of the session, or the heading's title
    QString detail;   ///< more about it on one line; may be empty
    QString tooltip;  ///< plain text of several lines
    QString spoken;   ///< the whole row in words, for screen readers
    QString cost;     ///< of the session, or of the heading's sessions together; may be empty

    // A heading's own.
    int count = 0;  ///< of its sessions
    bool isFolded = false;

    // A session's own.
    SessionState state = SessionState::unknown;
    QString stateLabel;
    QString agentSymbol;
    QString path;     ///< with the home folder as "~"
    QString project;  ///< the path's last folder
    QString branch;   ///< may be empty, as all that follow
    QString host;     ///< the application it runs in
    QString model;
    QString elapsed;  ///< how long the state lasts, or how long ago an ended session was active
    QString goal;     ///< of the session and how far it is, as short as a badge
    std::optional<double> goalShare;  ///< of its token budget that is used, 0 to 1
    QStringList badges;
    std::optional<double> contextFill;  ///< 1 for full
    bool isFavorite = false;
    bool isLive = false;
    bool isStale = false;   ///< silent for suspiciously long
    bool isNotice = false;  ///< the detail tells what came of something the user did

    bool operator==(const SessionRow&) const = default;
};

/// What rows are shown by.
struct RowContext {
    Date now;
    Calendar calendar = nullptr;
    std::string home;  ///< shown as "~" in paths
};

/// What a session's row shows besides the session.
struct RowAdditions {
    std::optional<std::string> notice;  ///< what came of something the user did
    std::string cost;                   ///< the amount as it is shown; empty where none is
    std::optional<GoalStore::Goal> goal;
    std::string goalLimits;   ///< of an own goal, in words; may be empty
    bool isSilenced = false;  ///< it does not notify, whatever it does
};

SessionRow sessionRow(const Session& session, const RowContext& context,
                      const RowAdditions& additions);

SessionRow headingRow(const SessionGroup& group, bool isFolded, const std::string& cost);

}  // namespace fleetwise

Q_DECLARE_METATYPE(fleetwise::SessionRow)
