#pragma once

#include <optional>
#include <string>

namespace fleetwise {

/// The SHA-256 digest (FIPS 180-4) of the regular file at `path` as 64 lower-case hexadecimal
/// digits; nothing where the file cannot be read to its end.
std::optional<std::string> sha256OfFile(const std::string& path);

}  // namespace fleetwise
