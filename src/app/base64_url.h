#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// The bytes of a text in the base64 alphabet for URLs (RFC 4648, section 5), with its padding or
/// without any. Nothing where a text is not exactly what the encoding of some bytes gives: foreign
/// characters, a length or a padding that cannot be, bits left over that are not 0.
std::optional<std::string> decodeBase64Url(std::string_view text);

}  // namespace fleetwise
