#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace fleetwise {

/// A byte string that lines of interest hold. It begins with a quotation mark.
struct LineMark {
    std::string_view text;
    std::size_t probe = 0;  ///< where in it a byte stands that is rare in JSON: "_" or "-"

    consteval explicit LineMark(std::string_view mark)
        : text(mark), probe(mark.find_first_of("_-")) {}
};

template <std::size_t Count>
using LineMarks = std::array<LineMark, Count>;

/// Finds marks in text that has hardly any. The library's searches for one byte string take several
/// times as long: the compilers' vectors compare sixteen places at once, on every processor.
template <std::size_t Count>
class MarkSearch {
public:
    explicit MarkSearch(const LineMarks<Count>& givenMarks) : marks(givenMarks) {
        for (std::size_t index = 0; index < Count; ++index) {
            probes[index] = every(marks[index].text[marks[index].probe]);
            longest = std::max(longest, marks[index].text.size());
        }
    }

    /// The first place in `text` at or behind `from` where one of the marks begins; npos where none
    /// does.
    std::size_t find(std::string_view text, std::size_t from) const {
        std::size_t place = from;
        for (; place + longest + stride <= text.size(); place += stride) {
            if (!mayBegin(text.data() + place)) continue;
            const std::size_t found = findSlowly(text, place, place + stride);
            if (found != std::string_view::npos) return found;
        }
        return findSlowly(text, place, text.size());
    }

private:
    using Bytes = unsigned char __attribute__((vector_size(16)));
    using Words = std::uint64_t __attribute__((vector_size(16)));
    static constexpr std::size_t stride = 4 * sizeof(Bytes);

    static Bytes every(char byte) { return static_cast<unsigned char>(byte) - Bytes{}; }

    static Bytes load(const char* from) {
        Bytes bytes;
        std::memcpy(&bytes, from, sizeof bytes);
        return bytes;
    }

    /// Whether one of the marks may begin at one of the next places.
    bool mayBegin(const char* at) const {
        const Bytes quotes = every('"');
        Bytes found{};
        for (const char* place = at; place < at + stride; place += sizeof(Bytes)) {
            Bytes probed{};
            for (std::size_t index = 0; index < Count; ++index)
                probed |=
                    reinterpret_cast<Bytes>(load(place + marks[index].probe) == probes[index]);
            found |= probed & reinterpret_cast<Bytes>(load(place) == quotes);
        }
        const auto words = reinterpret_cast<Words>(found);
        return (words[0] | words[1]) != 0;
    }

    std::size_t findSlowly(std::string_view text, std::size_t from, std::size_t end) const {
        for (std::size_t place = from; place < end; ++place) {
            if (text[place] != '"') continue;
            for (const LineMark& mark : marks) {
                if (text.compare(place, mark.text.size(), mark.text) == 0) return place;
            }
        }
        return std::string_view::npos;
    }

    const LineMarks<Count>& marks;
    std::array<Bytes, Count> probes{};
    std::size_t longest = 0;
};

}  // namespace fleetwise
