#pragma once

#include "foundation/date.h"
#include "foundation/regular_file.h"
#include "sources/codex_rollout.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// What the beginning of a rollout tells: its meta line and, as far as they stand in the head, the
/// first turn's settings and prompt.
struct RolloutHead {
    std::optional<std::string> sessionId;
    std::optional<std::string> cwd;
    std::optional<Date> startedAt;
    std::optional<std::int64_t> contextWindow;  ///< in tokens
    std::optional<std::string> originator;
    std::optional<std::string> source;  ///< where it is a text
    RolloutKind kind = RolloutKind::session;
    std::optional<std::string> parentId;
    std::optional<std::string> model;
    std::optional<std::string> firstPrompt;

    bool operator==(const RolloutHead&) const = default;

    /// How much of a file's beginning is read.
    static constexpr std::size_t window = 65'536;
    /// How much is read of a file whose meta line ends beyond the window.
    static constexpr std::size_t longestWindow = 1 << 20;

    struct Reading;

    /// Reads the head of a file.
    static tl::expected<Reading, FileError> read(const RegularFile& file);

    /// The head in the text of a file's beginning, which jsonPadding readable bytes must follow.
    /// The first meta line counts: a copied history brings further ones.
    static std::optional<RolloutHead> parse(std::string_view padded);
};

struct RolloutHead::Reading {
    /// Nothing where the file holds no meta line, or none that ends within the longest window.
    std::optional<RolloutHead> head;
    /// Offset of the first byte that is not looked at, however long the file grows.
    std::uint64_t end = 0;
};

}  // namespace fleetwise
