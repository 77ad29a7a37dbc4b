#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// A text of the interface that has places for values: "%@" a text, "%d" a whole number, "%f" or
/// "%.1f" a figure, "%%" a per cent sign. A wording may number its places, "%2$@", from 1 to 9,
/// and does so with all of them or with none.
struct TextPattern {
    /// The wording as printf takes it.
    std::string printfForm;

    /// What each argument, counted from 1, is shown as: '@', 'd' or 'f'.
    std::map<int, char> placeholders;
};

/// Nothing where the wording does not follow the form.
std::optional<TextPattern> textPattern(std::string_view wording);

}  // namespace fleetwise
