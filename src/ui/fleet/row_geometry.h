#pragma once

#include <QRect>

#include <string_view>

namespace fleetwise {

/// How much room a row takes.
enum class Density {
    compact,      ///< one line
    comfortable,  ///< two lines
};

/// The setting's name for it; anything but "comfortable" is compact.
Density densityFrom(std::string_view raw);
std::string_view rawValue(Density density);

/// What text needs, in device-independent pixels.
struct RowTextSizes {
    int lineHeight = 0;       ///< of the names
    int smallLineHeight = 0;  ///< of the second line
    int timeWidth = 0;        ///< of the longest usual running time
    int costWidth = 0;        ///< of the longest usual amount; 0 where rows tell none
};

/// Where the parts of a session's row stand. Texts are placed in the middle of their height; an
/// empty rectangle is a part that this row has no room for.
struct RowGeometry {
    QRect glyph;
    QRect name;
    QRect detail;
    QRect place;   ///< path or project, and branch; right-aligned
    QRect origin;  ///< application and model; right-aligned
    QRect bar;     ///< how full the context is
    QRect cost;    ///< right-aligned
    QRect time;    ///< right-aligned

    bool operator==(const RowGeometry&) const = default;
};

/// What the two buttons in a row under the pointer do.
enum class RowAction {
    act,   ///< focuses or resumes the session
    menu,  ///< opens its menu
};

/// Where they stand: at the right end, over whatever the row has there.
struct RowActions {
    QRect act;
    QRect menu;

    /// The room that both take.
    QRect area() const { return act.united(menu); }
};

int rowHeight(Density density, const RowTextSizes& sizes);
int headingHeight(const RowTextSizes& sizes);

RowGeometry rowGeometry(const QRect& row, Density density, const RowTextSizes& sizes);

RowActions rowActions(const QRect& row, const RowTextSizes& sizes);

}  // namespace fleetwise
