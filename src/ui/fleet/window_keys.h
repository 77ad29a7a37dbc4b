#pragma once

#include <QKeySequence>

namespace fleetwise {

// The main window's keys that menus tell of.

inline const QKeySequence usageKey(Qt::CTRL | Qt::Key_U);
inline const QKeySequence archiveKey(Qt::CTRL | Qt::Key_H);
inline const QKeySequence settingsKey(Qt::CTRL | Qt::Key_Comma);
inline const QKeySequence detailsKey(Qt::CTRL | Qt::Key_I);

}  // namespace fleetwise
