#include "session/session_origin.h"

#include "localisation/localisation.h"

namespace fleetwise {

std::string_view rawValue(SessionOrigin origin) {
    switch (origin) {
        case SessionOrigin::cli:
            return "cli";
        case SessionOrigin::desktop:
            return "desktop";
        case SessionOrigin::unknown:
            break;
    }
    return "unknown";
}

std::string label(SessionOrigin origin) {
    switch (origin) {
        case SessionOrigin::cli:
            return localised("CLI"_text);
        case SessionOrigin::desktop:
            return localised("Desktop"_text);
        case SessionOrigin::unknown:
            break;
    }
    return localised("?"_text);
}

SessionOrigin sessionOriginFrom(std::optional<std::string_view> entrypoint) {
    const auto contains = [&](std::string_view word) {
        return entrypoint && entrypoint->find(word) != std::string_view::npos;
    };
    if (contains("desktop")) return SessionOrigin::desktop;
    if (contains("cli") || contains("terminal")) return SessionOrigin::cli;
    return SessionOrigin::unknown;
}

}  // namespace fleetwise
