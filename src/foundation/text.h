#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace fleetwise {

/// Without ASCII white space at both ends.
std::string_view trimmed(std::string_view text);

/// Calls `visit(std::string_view)` for each line of `text`, without its line feed; also for a last
/// one that has none.
template <typename Visit>
void forEachLine(std::string_view text, Visit&& visit) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        visit(line);
    }
}

/// ASCII letters in lower case, all other bytes as they are.
std::string asciiLowercased(std::string_view text);

/// A UTF-8 text for comparing and searching without regard to case: every letter in lower case, by
/// the Unicode tables of the system. Bytes that are not UTF-8 stay as they are.
std::string caseFolded(std::string_view text);

/// At most the first `limit` characters (Unicode code points) of a UTF-8 text. Where something
/// was cut off, the last of them is "…".
std::string shortenedText(std::string_view text, std::size_t limit);

/// The text fit for one line of a terminal: control characters become blanks, bytes that are not
/// UTF-8 become U+FFFD.
std::string printable(std::string_view text);

}  // namespace fleetwise
