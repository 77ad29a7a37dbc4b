#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// The SHA-256 digest (FIPS 180-4) of the text as 64 lower-case hexadecimal digits; nothing where
/// the system's library does not offer it.
std::optional<std::string> sha256OfText(std::string_view text);

/// The same of the regular file at `path`; nothing where the file cannot be read to its end.
std::optional<std::string> sha256OfFile(const std::string& path);

}  // namespace fleetwise
