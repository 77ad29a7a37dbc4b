#pragma once

#include "session/session_state.h"

#include <QString>

#include <optional>

namespace fleetwise {

/// One line of the details, ready to be shown. All texts but `text` may be empty.
struct DetailRow {
    std::optional<SessionState> sign;  ///< in front of it, by its shape
    QString signName;                  ///< what the sign says, in words
    QString text;
    QString figure;    ///< right-aligned at the end
    QString detail;    ///< below, in secondary colour
    QString tooltip;   ///< plain text
    QString copied;    ///< what the button at the end puts into the clipboard
    QString copyName;  ///< what that button is called

    bool operator==(const DetailRow&) const = default;
};

}  // namespace fleetwise
