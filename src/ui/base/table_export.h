#pragma once

#include "fleet/figure_table.h"

#include <QString>

class QWidget;

namespace fleetwise {

/// Writes the table to `path` in the form of `commaSeparated`, as a whole or not at all. Returns
/// why that failed, for the user; empty otherwise.
QString exportTable(const FigureTable& table, const QString& path);

/// Asks where to, writes the table there and says so where that fails. Returns at once.
void offerExport(const FigureTable& table, QWidget* parent);

}  // namespace fleetwise
