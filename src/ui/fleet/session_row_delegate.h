#pragma once

#include "ui/base/cost_display.h"
#include "ui/fleet/row_geometry.h"
#include "ui/fleet/session_row.h"

#include <QRegion>
#include <QStyledItemDelegate>

#include <optional>

namespace fleetwise {

struct Palette;

/// Paints the rows of FleetListModel.
class SessionRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    enum class StateLabels { shown, hidden };
    enum class Actions { shown, hidden };

    explicit SessionRowDelegate(QObject* parent = nullptr) : QStyledItemDelegate(parent) {}

    void setDensity(Density density) { rowDensity = density; }

    /// Whether rows tell their state in words; headings that tell it spare them that.
    void setStateLabels(StateLabels labels) { stateLabels = labels; }

    /// Whether sessions' rows have room for what they cost.
    void setCosts(const CostDisplay& costs) {
        tellsCosts = costs.extent == CostDisplay::Extent::sessions;
    }

    /// Whether the session's row under the pointer has buttons.
    void setActions(Actions choice) { actions = choice; }

    /// The button that is under the pointer itself.
    void setPointedAction(std::optional<RowAction> action) { pointedAction = action; }

    /// How far the rings of working sessions have turned, 0 to 1.
    void setTurn(double share) { turn = share; }

    /// What of the view is to be painted next; paint() leaves out what lies outside.
    void setPaintedRegion(const QRegion& region) { painted = region; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Where a session's row that takes up `row` has its glyph.
    QRect glyphRect(const QStyleOptionViewItem& option, const QRect& row) const;

    /// The buttons of that row; empty ones where rows have none.
    RowActions actionsOf(const QStyleOptionViewItem& option, const QRect& row) const;

private:
    RowTextSizes textSizes(const QFont& font) const;
    void paintHeading(QPainter& painter, const QStyleOptionViewItem& option,
                      const SessionRow& row) const;
    void paintSession(QPainter& painter, const QStyleOptionViewItem& option, const SessionRow& row,
                      const QRect& touched) const;
    /// The right column, but for what `covered` hides.
    static void paintRight(QPainter& painter, const RowGeometry& geometry, const QRect& covered,
                           const SessionRow& row, const Palette& palette);
    void paintDetail(QPainter& painter, const QRect& area, const SessionRow& row,
                     const Palette& palette) const;

    static constexpr int everywhere = 1 << 20;

    Density rowDensity = Density::compact;
    StateLabels stateLabels = StateLabels::shown;
    Actions actions = Actions::hidden;
    std::optional<RowAction> pointedAction;
    bool tellsCosts = false;
    double turn = 0;
    QRegion painted{-everywhere, -everywhere, 2 * everywhere, 2 * everywhere};
};

}  // namespace fleetwise
