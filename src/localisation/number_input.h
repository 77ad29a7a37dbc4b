#pragma once

#include <tl/expected.hpp>

#include <cstdint>
#include <string_view>

namespace fleetwise {

/// Why a text is not the number that was asked for.
enum class NumberFault {
    notANumber,  ///< nothing, other characters, a sign, or groups that fit no reading
    tooPrecise,  ///< more decimals than asked for
    tooLarge,
};

/// Reads what the user typed for a number without a sign, with at most `decimals` digits (0 to 9)
/// behind the separator, and gives it in units of the last of them: the counterpart of
/// groupedNumber and fixedNumber. "1.234,5" with 2 decimals is 123450 in German. Groups of three
/// may be separated as `language` does, by a space or an apostrophe, or not at all. A point that
/// cannot separate groups is a decimal point in every language: "0.5". Blanks around it count for
/// nothing.
tl::expected<std::int64_t, NumberFault> parseNumber(std::string_view text, int decimals,
                                                    std::string_view language);

}  // namespace fleetwise
