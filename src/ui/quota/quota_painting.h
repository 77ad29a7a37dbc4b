#pragma once

#include "ui/quota/quota_figures.h"

#include <QFontMetrics>
#include <QRect>

#include <vector>

class QPainter;
class QPalette;

namespace fleetwise {

enum class QuotaArrangement {
    stacked,     ///< one line below the other, titles above theirs
    sideBySide,  ///< as many blocks in a row as fit, titles to the left of theirs
};

/// Where the parts of QuotaFigures stand, from (0, 0) on.
struct QuotaPlaces {
    struct Block {
        QRect title;               ///< empty without one
        std::vector<QRect> lines;  ///< with the bar at their foot
    };

    std::vector<Block> blocks;  ///< as those of the figures
    int height = 0;             ///< 0 without blocks
};

/// `metrics` are those of the small font.
QuotaPlaces quotaPlaces(const QuotaFigures& figures, QuotaArrangement arrangement, int width,
                        const QFontMetrics& metrics);

/// Paints with the painter's font and from its origin on, in the colours of the widget's palette.
void paintQuota(QPainter& painter, const QuotaFigures& figures, const QuotaPlaces& places,
                const QPalette& ofWidget);

/// What explains the line at a point; empty beside the lines.
QString explanationAt(const QuotaFigures& figures, const QuotaPlaces& places, const QPoint& point);

}  // namespace fleetwise
