#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// Whom an absolute address of the web leads to, and how.
struct WebAddress {
    std::string scheme;  ///< in lower case
    std::string host;    ///< in lower case; an IPv6 address without its brackets

    bool operator==(const WebAddress&) const = default;

    /// Reads "scheme://user@host:port/path" (RFC 3986), of which scheme and host are needed, more
    /// strictly than browsers do. Nothing for what others might read otherwise: blanks, control
    /// characters, backslashes, a host with percent signs, a port that is none.
    static std::optional<WebAddress> parse(std::string_view text);
};

}  // namespace fleetwise
