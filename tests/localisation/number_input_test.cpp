#include "localisation/number_input.h"

#include "localisation/localisation.h"
#include "localisation/number_format.h"

#include <gtest/gtest.h>

#include <limits>

namespace fleetwise {
namespace {

constexpr auto notANumber = NumberFault::notANumber;
constexpr auto tooPrecise = NumberFault::tooPrecise;
constexpr auto tooLarge = NumberFault::tooLarge;

TEST(NumberInput, readsTheFormOfTheLanguageAndPlainOnes) {
    const struct {
        const char* language;
        const char* text;
        int decimals;
        tl::expected<std::int64_t, NumberFault> expected;
    } rows[] = {
        {"de", "1.234,5", 2, 123'450},
        {"de", "1234,56", 2, 123'456},
        {"de", "1.234", 2, 123'400},
        {"de", "12.345.678", 0, 12'345'678},
        {"de", "12.34", 2, 1'234},
        {"de", "0.5", 2, 50},
        {"de", ",5", 2, 50},
        {"de", " 200 000 ", 0, 200'000},
        {"de", "0", 0, 0},
        {"de", "0,00", 2, 0},
        {"de", "007", 0, 7},
        {"en", "1,234.5", 2, 123'450},
        {"en", "1,234", 0, 1'234},
        {"en", ".5", 1, 5},
        {"en", "1'234'567.89", 2, 123'456'789},
        {"fr", "1\u202F234,5", 1, 12'345},
        {"pl", "1\u00A0234", 0, 1'234},
        {"it", "1\u2019234", 0, 1'234},
        // The other way around, or neither.
        {"en", "1.234,5", 2, tl::unexpected(notANumber)},
        {"de", "1,234.5", 2, tl::unexpected(notANumber)},
        {"en", "1,5", 2, tl::unexpected(notANumber)},
        {"en", "12,34,567", 0, tl::unexpected(notANumber)},
        {"de", "1.23.456", 0, tl::unexpected(notANumber)},
        {"de", "1.2345", 2, tl::unexpected(tooPrecise)},
        {"de", "0.500", 2, tl::unexpected(tooPrecise)},
        {"de", "1234.567", 2, tl::unexpected(tooPrecise)},
        {"de", "1.234 567", 0, tl::unexpected(notANumber)},
        {"de", "1,5", 0, tl::unexpected(tooPrecise)},
        {"de", "5,", 2, tl::unexpected(notANumber)},
        {"de", ",", 2, tl::unexpected(notANumber)},
        {"de", "1,2,3", 2, tl::unexpected(notANumber)},
        {"de", "", 0, tl::unexpected(notANumber)},
        {"de", "  ", 0, tl::unexpected(notANumber)},
        {"de", "-5", 0, tl::unexpected(notANumber)},
        {"de", "1e5", 0, tl::unexpected(notANumber)},
        {"de", "inf", 0, tl::unexpected(notANumber)},
        {"de", "\u0665", 0, tl::unexpected(notANumber)},
        {"de", "\xFF", 0, tl::unexpected(notANumber)},
        {"de", "9223372036854775807", 0, std::numeric_limits<std::int64_t>::max()},
        {"de", "9223372036854775808", 0, tl::unexpected(tooLarge)},
        {"de", "92233720368547758,08", 2, tl::unexpected(tooLarge)},
        {"de", "99999999999999999999999999", 0, tl::unexpected(tooLarge)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parseNumber(row.text, row.decimals, row.language), row.expected)
            << row.language << " " << row.text;
    }
}

TEST(NumberInput, readsWhatIsWritten) {
    for (const char* language : {"de", "en", "fr", "es", "it", "pl"}) {
        setInterfaceLanguage(language, {});
        for (const std::int64_t number : {0L, 7L, 99L, 100L, 1'000L, 123'456L, 1'234'567'890L}) {
            EXPECT_EQ(parseNumber(groupedNumber(number), 0, language), number) << language;
            EXPECT_EQ(parseNumber(fixedNumber(number, 2), 2, language), number) << language;
        }
    }
    setInterfaceLanguage("de", {});
}

}  // namespace
}  // namespace fleetwise
