#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace fleetwise {

/// The version of a program, such as "0.10.0" or "1.2-beta.3": numbers with dots, and before the
/// release a hyphen and identifiers with dots. A build, "+…", is not looked at. Missing numbers
/// count as 0, "0.9" comes before "0.10", and "1.2-beta.3" before "1.2".
class Version {
public:
    /// Nothing for any other form, and for numbers beyond 32 bits.
    static std::optional<Version> parse(std::string_view text);

    auto operator<=>(const Version&) const = default;

private:
    /// A number, which comes before every word, or a word.
    using Identifier = std::variant<std::uint32_t, std::string>;

    static std::optional<Identifier> identifier(std::string_view text);

    // In the order in which they decide.
    std::vector<std::uint32_t> numbers;  ///< without zeros at the end
    bool isReleased = true;
    std::vector<Identifier> early;
};

}  // namespace fleetwise
