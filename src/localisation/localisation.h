#pragma once

#include "localisation/strings_table.h"

#include <fmt/printf.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace fleetwise {

/// A text of the interface: its German wording, which is also its key in the tables of the other
/// languages. Made only by the literal "…"_text, so that a test finds every one in the sources.
struct Text {
    std::string_view german;
};

consteval Text operator""_text(const char* text, std::size_t length) {
    return {std::string_view(text, length)};
}

/// Makes `language` (one of interfaceLanguages, or pseudoLanguage) the one that numbers are written
/// in from now on, and `table` the one that texts are looked up in; an empty table means German.
/// Until the first call all is German. Any thread.
void setInterfaceLanguage(std::string language, StringsTable table);

/// The language given last, "de" before. Any thread.
std::string interfaceLanguageInUse();

/// The text in the interface language; its German wording where the table does not have it.
/// Any thread.
std::string localised(Text text);

/// The text in the interface language in the form that printf takes. A translation whose
/// placeholders are not those of the German wording is passed over in favour of that.
std::string localisedPattern(Text text);

/// As localisedFormat, of arguments that fmt has gathered: written out here once, since what fills
/// them in is long to compile.
std::string localisedWith(Text text, fmt::printf_args arguments);

/// The wording for a count, with the count in place of its only placeholder "%d": `one` is the
/// German wording for 1, `several` that for all other counts. Which of a language's forms a count
/// takes is by the Unicode CLDR's plural rules for whole numbers; where a language has a form
/// between the two ("few"), its table has it under the key of `several` with "|few" behind it.
std::string localisedCount(std::int64_t count, Text one, Text several);

/// As localised, with the placeholders filled in order: "%@" a text, "%d" a whole number, "%.1f" a
/// figure, "%%" a per cent sign (TextPattern has the form). The arguments must fit the German
/// wording; where they do not, it is returned as it stands.
template <typename... Arguments>
std::string localisedFormat(Text text, const Arguments&... arguments) {
    return localisedWith(text, fmt::make_printf_args(arguments...));
}

}  // namespace fleetwise
