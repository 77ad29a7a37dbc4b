#include "fleet/figure_table.h"

#include <fmt/format.h>

#include <cmath>
#include <string_view>

namespace fleetwise {

namespace {

constexpr std::string_view lineEnd = "\r\n";

std::string field(std::string text) {
    constexpr std::string_view formulaStarts = "=+-@\t\r";
    if (!text.empty() && formulaStarts.find(text.front()) != std::string_view::npos) {
        text.insert(text.begin(), '\'');
    }
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"') quoted += '"';
        quoted += character;
    }
    return quoted + '"';
}

std::string field(const FigureTable::Cell& cell) {
    if (!cell.plain.empty()) return field(cell.plain);
    if (cell.number) return std::isfinite(*cell.number) ? fmt::format("{}", *cell.number) : "";
    return field(cell.text);
}

template <typename Cells>
void addLine(std::string& text, const Cells& cells) {
    for (std::size_t column = 0; column < cells.size(); ++column) {
        if (column > 0) text += ',';
        text += field(cells[column]);
    }
    text += lineEnd;
}

}  // namespace

std::string commaSeparated(const FigureTable& table) {
    std::string text;
    addLine(text, table.headings);
    for (const FigureTable::Row& row : table.rows)
        addLine(text, row);
    return text;
}

}  // namespace fleetwise
