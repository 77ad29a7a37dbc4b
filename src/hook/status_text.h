#pragma once

#include "hook/status_record.h"

#include <span>
#include <string_view>

namespace fleetwise::hook {

/// Texts in a status file have at most this many characters (Unicode code points).
inline constexpr std::size_t characterLimit = 400;

/// The largest status file. A record with all its lists full of the longest texts, each character
/// escaped, takes less.
inline constexpr std::size_t statusTextLimit = 1 << 20;

/// Reads the text of a status file, which is unescaped in place and must be followed by
/// parserPadding zero bytes. False where it is not JSON; what has another type than expected is
/// left out.
bool readStatusText(std::span<char> text, StatusRecord& record);

/// Writes the status file into `space` and returns its text; empty where it does not fit. Texts
/// are cut to characterLimit, and bytes in them that are not UTF-8 are replaced by U+FFFD.
std::string_view writeStatusText(const StatusRecord& record, std::span<char> space);

}  // namespace fleetwise::hook
