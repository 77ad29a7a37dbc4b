#pragma once

#include "foundation/json_reader.h"
#include "foundation/regular_file.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Bytes in memory, read like a file.
class MemoryBytes {
public:
    explicit MemoryBytes(std::string_view contents) : bytes(contents) {}

    tl::expected<std::size_t, FileError> read(std::uint64_t offset, std::span<char> into) const {
        if (offset >= bytes.size()) return 0U;
        return bytes.copy(into.data(), into.size(), static_cast<std::size_t>(offset));
    }

private:
    std::string_view bytes;
};

/// Splits a range of a source's bytes into lines. The buffer holds one chunk and grows only for a
/// longer line, never beyond the range.
template <typename Source>
class LineSplitter {
public:
    static constexpr std::size_t defaultChunk = 256 * 1024;

    explicit LineSplitter(const Source& bytes, std::size_t chunkBytes = defaultChunk)
        : source(bytes), chunk(chunkBytes) {}

    /// Calls `visit(line, offset)` for every line that ends with a newline, in order: the line
    /// without its newline, followed by jsonPadding readable bytes and valid during the call, and
    /// the offset of its first byte in the source. Returns the offset just after the last newline
    /// of the range, or `begin` where it has none. A source that ends early ends the range.
    template <typename Visit>
    tl::expected<std::uint64_t, FileError> forEachLine(std::uint64_t begin, std::uint64_t end,
                                                       Visit&& visit) {
        std::uint64_t lineStart = begin;
        std::size_t filled = 0;  // bytes of the unfinished line at the front of the buffer
        while (lineStart + filled < end) {
            const auto wanted = makeRoom(filled, end - lineStart - filled);
            const auto got = source.read(lineStart + filled, {buffer.data() + filled, wanted});
            if (!got) return tl::unexpected(got.error());
            const std::string_view bytes(buffer.data(), filled + *got);
            const std::size_t consumed = visitLines(bytes, filled, lineStart, visit);
            filled = bytes.size() - consumed;
            lineStart += consumed;
            if (consumed > 0) std::memmove(buffer.data(), buffer.data() + consumed, filled);
            if (*got < wanted) break;
        }
        return lineStart;
    }

private:
    /// Room behind the first `filled` bytes, of which `remaining` are yet to come; returns how
    /// many to read now.
    std::size_t makeRoom(std::size_t filled, std::uint64_t remaining) {
        const std::size_t room = buffer.empty() ? 0 : buffer.size() - jsonPadding;
        if (filled < room) return smaller(room - filled, remaining);
        const std::size_t more = smaller(std::max(chunk, filled), remaining);
        buffer.resize(filled + more + jsonPadding);
        return more;
    }

    static std::size_t smaller(std::size_t bytes, std::uint64_t remaining) {
        return static_cast<std::size_t>(std::min<std::uint64_t>(bytes, remaining));
    }

    /// Visits the whole lines of `bytes`, whose first `searched` bytes hold no newline; returns how
    /// many bytes they took.
    template <typename Visit>
    static std::size_t visitLines(std::string_view bytes, std::size_t searched,
                                  std::uint64_t offset, Visit& visit) {
        std::size_t start = 0;
        for (std::size_t from = searched;; from = start) {
            const std::size_t newline = bytes.find('\n', from);
            if (newline == std::string_view::npos) return start;
            visit(bytes.substr(start, newline - start), offset + start);
            start = newline + 1;
        }
    }

    const Source& source;
    std::size_t chunk;
    std::vector<char> buffer;
};

}  // namespace fleetwise
