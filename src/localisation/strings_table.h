#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace fleetwise {

/// German wording to the wording of one other language.
using StringsTable = std::map<std::string, std::string, std::less<>>;

/// Reads a table of the form
///     /* comment */
///     "Arbeitet" = "Working";
/// in UTF-8, with or without a byte order mark, with // comments and the escapes \" \\ \n \t and \U
/// followed by four hexadecimal digits. A text ends on the line it begins on. A pair that does
/// not follow the form is skipped up to the next semicolon; of two pairs with the same key the
/// later counts.
StringsTable parseStringsTable(std::string_view contents);

/// The table `<directory>/<language>.lproj/Localizable.strings`; empty where there is none.
StringsTable loadStringsTable(const std::string& directory, std::string_view language);

}  // namespace fleetwise
