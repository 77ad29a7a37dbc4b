#pragma once

#include "foundation/text.h"

#include <fmt/format.h>

#include <iterator>
#include <string>
#include <string_view>

namespace fleetwise {

/// Gathers the lines "    Label:      value" of one session's block in the report.
class ReportBlock {
public:
    /// Nothing where the value is empty.
    void line(std::string_view label, std::string_view value) {
        if (value.empty()) return;
        fmt::format_to(std::back_inserter(text), "    {:<13}{}\n", fmt::format("{}:", label),
                       printable(value));
    }

    /// A further value below the line before.
    void continued(std::string_view value) {
        fmt::format_to(std::back_inserter(text), "    {:<13}{}\n", "", printable(value));
    }

    void verbatim(std::string_view line) {
        text += line;
        text += '\n';
    }

    std::string text;
};

}  // namespace fleetwise
