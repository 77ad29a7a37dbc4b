#pragma once

#include "cost/mark_search.h"
#include "foundation/json_reader.h"
#include "foundation/regular_file.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Finds the few lines of large files that hold one of several byte strings. Every byte is looked
/// at once, whatever the number of lines. One object serves one thread and one file after another.
class LineSearch {
public:
    static constexpr std::size_t defaultBlock = 256 * 1024;
    /// No line of interest is as long; a longer one is passed over, so that memory stays bounded.
    static constexpr std::size_t longestLine = 32 * 1024 * 1024;

    explicit LineSearch(std::size_t givenBlock = defaultBlock) : block(givenBlock) {}

    enum class Going { on, stop };

    /// Calls `visit(line)` for each line of the source's first `size` bytes that holds one of the
    /// marks, in order, also for a last one without a newline: the line without its newline,
    /// followed by jsonPadding readable bytes, valid during the call. `visit` says whether to go
    /// on. `progress(bytes)` is told of each block and says so, too. A source that ends early ends
    /// the search.
    template <typename Source, std::size_t Count, typename Visit, typename Progress>
    tl::expected<Going, FileError> forEachMarkedLine(const Source& source, std::uint64_t size,
                                                     const LineMarks<Count>& marks, Visit&& visit,
                                                     Progress&& progress) {
        const MarkSearch<Count> search(marks);
        std::uint64_t read = 0;
        std::size_t kept = 0;  // bytes of the unfinished line at the front of the buffer
        bool skipsLine = false;
        while (read < size) {
            makeRoom(kept);
            const auto wanted = static_cast<std::size_t>(
                std::min<std::uint64_t>(buffer.size() - jsonPadding - kept, size - read));
            const auto got = source.read(read, {buffer.data() + kept, wanted});
            if (!got) return tl::unexpected(got.error());
            read += *got;
            const bool isLast = *got < wanted || read == size;
            if (progress(*got) == Going::stop) return Going::stop;
            std::string_view text(buffer.data(), kept + *got);
            skipsLine = skipsLine && !dropLineBegin(text);
            if (visitLines(text, search, isLast, visit) == Going::stop) return Going::stop;
            if (isLast) break;
            kept = keepLastLine(text);
            skipsLine = skipsLine || kept > longestLine;
            if (skipsLine) kept = 0;
        }
        return Going::on;
    }

private:
    /// Room for a block behind the first `kept` bytes. A long line doubles it.
    void makeRoom(std::size_t kept) {
        const std::size_t wanted = kept + std::max(block, kept) + jsonPadding;
        if (buffer.size() < wanted) buffer.resize(wanted);
    }

    static bool dropLineBegin(std::string_view& text) {
        const std::size_t newline = text.find('\n');
        text.remove_prefix(newline == std::string_view::npos ? text.size() : newline + 1);
        return newline != std::string_view::npos;
    }

    template <std::size_t Count, typename Visit>
    static Going visitLines(std::string_view text, const MarkSearch<Count>& search, bool isLast,
                            Visit& visit) {
        std::size_t begin = 0;
        for (std::size_t place = search.find(text, 0); place != std::string_view::npos;) {
            begin = lineBegin(text, begin, place);
            const std::size_t end = text.find('\n', place);
            if (end == std::string_view::npos && !isLast) break;
            const std::string_view line = text.substr(begin, end - begin);
            if (line.size() <= longestLine && visit(line) == Going::stop) return Going::stop;
            if (end == std::string_view::npos) break;
            place = search.find(text, end + 1);
            begin = end + 1;
        }
        return Going::on;
    }

    /// Of the line that `place` stands in, which begins at `from` or behind it.
    static std::size_t lineBegin(std::string_view text, std::size_t from, std::size_t place) {
        // Forward, since the library searches fast in this direction only.
        for (std::size_t newline = 0; (newline = text.find('\n', from)) < place;)
            from = newline + 1;
        return from;
    }

    /// Moves what follows the last newline of `text` to the front of the buffer.
    std::size_t keepLastLine(std::string_view text) {
        const std::size_t begin = text.rfind('\n') + 1;
        std::memmove(buffer.data(), text.data() + begin, text.size() - begin);
        return text.size() - begin;
    }

    std::size_t block;
    std::vector<char> buffer;
};

}  // namespace fleetwise
