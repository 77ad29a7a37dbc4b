#pragma once

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Figures as a table: what a chart shows, for everyone who would rather read it. A plain value.
struct FigureTable {
    struct Cell {
        std::string text;              ///< as shown, in the interface language
        std::optional<double> number;  ///< the figure behind it, in the unit of the heading
        std::string plain;             ///< in a file in place of all else, where not empty: a date

        bool operator==(const Cell&) const = default;
    };
    using Row = std::vector<Cell>;  ///< as many as there are headings

    std::string title;
    std::vector<std::string> headings;
    std::vector<Row> rows;

    bool operator==(const FigureTable&) const = default;
};

/// The table by RFC 4180, in UTF-8 with the headings first; figures with a point and in full, none
/// for a cell that has neither figure nor text. A text that a spreadsheet would take for a formula
/// gets an apostrophe in front.
std::string commaSeparated(const FigureTable& table);

}  // namespace fleetwise
