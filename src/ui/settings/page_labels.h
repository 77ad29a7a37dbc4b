#pragma once

#include <QString>

class QLabel;

namespace fleetwise {

/// A plain text that breaks into lines.
QLabel* makePageText(const QString& text = {});

/// The same, small and in the secondary colour.
QLabel* makePageNote(const QString& text = {});

}  // namespace fleetwise
