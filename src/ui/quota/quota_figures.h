#pragma once

#include "ui/mark/mark_painter.h"
#include "usage/usage_overview.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// What is shown of the quota windows.
struct QuotaFigures {
    /// One window.
    struct Line {
        QString text;         ///< parts with " · " between them, what matters most first
        QString explanation;  ///< all that is known of it, on several lines
        double used = 0;      ///< share of the quota, 1 is all of it; 0 after a reset
        std::optional<double> projected;  ///< the share at the window's end if all goes on so
        bool isStale = false;             ///< nothing to rely on; the text tells its age

        bool operator==(const Line&) const = default;
    };

    /// The windows of one account.
    struct Block {
        QString title;  ///< whose they are; empty where no others are shown
        std::vector<Line> lines;

        bool operator==(const Block&) const = default;
    };

    /// Claude's accounts, the one in use first, then Codex. Of many accounts the last are a title
    /// without lines that tells how many they are.
    std::vector<Block> blocks;

    bool operator==(const QuotaFigures&) const = default;
};

/// Empty where nothing is known.
QuotaFigures quotaFigures(const UsageOverview& usage, Date now, Calendar calendar);

/// All lines' texts with their titles, for screen readers.
QString spokenText(const QuotaFigures& figures);

/// What the mark shows of the account in use. Stale figures are left out: a mark cannot tell how
/// old they are.
MarkFigures quotaMark(const UsageOverview& usage, Date now);

/// A line of the mark's tooltip for each window of the account in use that is known.
std::vector<std::string> quotaTooltip(const UsageOverview& usage, Date now, Calendar calendar);

}  // namespace fleetwise
