#pragma once

#include <compare>
#include <string>
#include <string_view>

namespace fleetwise {

/// Which agent program runs a session: a short lower-case word such as "claude" or "codex".
class SessionAgent {
public:
    /// Claude Code.
    SessionAgent() : raw("claude") {}

    /// Normalises: trimmed and lower-cased; empty becomes "claude"; longer than 32 characters, or
    /// with a character outside a–z 0–9 - _ . becomes "?".
    explicit SessionAgent(std::string_view name);

    const std::string& rawValue() const { return raw; }

    /// In the interface language. An agent without a label of its own shows its name with the
    /// first letter capitalised.
    std::string label() const;

    /// The name of its symbol in the interface.
    std::string_view symbol() const;

    bool isClaude() const { return raw == "claude"; }
    bool isCodex() const { return raw == "codex"; }

    auto operator<=>(const SessionAgent&) const = default;

private:
    std::string raw;
};

}  // namespace fleetwise
