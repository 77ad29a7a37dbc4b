#pragma once

#include "foundation/regular_file.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

// What the user typed last in a Codex session, by its rollout.

/// Prompts are cut to this many characters.
inline constexpr std::size_t longestRolloutPrompt = 4000;

/// How much of a file's end is searched; a prompt before that is taken from the file's head, if it
/// stands there.
inline constexpr std::uint64_t rolloutPromptWindow = 4 << 20;

/// Whether a message in the user's name is one that the user typed.
using IsTypedPrompt = std::function<bool(std::string_view)>;

/// Nothing where the file cannot be read or holds no prompt.
std::optional<std::string> lastRolloutPrompt(const RegularFile& file, const IsTypedPrompt& isTyped);

/// As above, in whole lines, which jsonPadding readable bytes must follow. Never empty.
std::optional<std::string> lastRolloutPrompt(std::string_view padded, const IsTypedPrompt& isTyped);

}  // namespace fleetwise
