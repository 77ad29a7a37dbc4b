#pragma once

#include "foundation/skip_tally.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace fleetwise {

/// What the user typed last in a session of Claude Code.
struct TypedPrompt {
    std::string text;  ///< as archiveText has it, never empty
    std::string cwd;   ///< may be empty

    bool operator==(const TypedPrompt&) const = default;
};

/// The latest prompts by session id, from ~/.claude/history.jsonl: one JSON object a line with
/// "display", "project" and "sessionId", appended to with each prompt. Commands such as "/clear"
/// and lines that name no session are passed over.
class PromptHistory {
public:
    using Prompts = std::unordered_map<std::string, TypedPrompt>;

    /// How much of the file's end is read.
    static constexpr std::uint64_t window = 67'108'864;

    /// Nothing where the file cannot be read, which is counted in `skipped`.
    static std::optional<Prompts> read(const std::string& path, SkipTally& skipped);

    /// The prompts in lines that each end with a newline.
    static Prompts parse(std::string_view lines);
};

}  // namespace fleetwise
