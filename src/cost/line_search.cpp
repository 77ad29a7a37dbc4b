#include "cost/line_search.h"

#include <array>

namespace fleetwise {

namespace {

// Most of a large file is text without any mark, and the library's searches for one take several
// times as long: the compilers' vectors compare sixteen places at once, on every processor.

constexpr std::size_t lanes = 16;
using Bytes = unsigned char __attribute__((vector_size(lanes)));
using Words = std::uint64_t __attribute__((vector_size(lanes)));

Bytes load(const char* from) {
    Bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

Bytes equal(Bytes bytes, char wanted) {
    const auto every = static_cast<unsigned char>(wanted) - Bytes{};
    return reinterpret_cast<Bytes>(bytes == every);
}

bool isAny(Bytes found) {
    const auto words = reinterpret_cast<Words>(found);
    return (words[0] | words[1]) != 0;
}

bool standsAt(std::string_view text, std::size_t place, LineMarks marks) {
    return text[place] == '"' && std::ranges::any_of(marks, [&](const LineMark& mark) {
               return text.compare(place, mark.text.size(), mark.text) == 0;
           });
}

/// Whether one of the marks may begin at one of the next places.
bool mayBegin(const char* at, LineMarks marks) {
    Bytes probed{};
    for (const LineMark& mark : marks)
        probed |= equal(load(at + mark.probe), mark.text[mark.probe]);
    return isAny(probed & equal(load(at), '"'));
}

}  // namespace

std::size_t findMark(std::string_view text, LineMarks marks, std::size_t from) {
    std::size_t longest = 0;
    for (const LineMark& mark : marks)
        longest = std::max(longest, mark.text.size());
    std::size_t place = from;
    for (; place + longest + lanes <= text.size(); place += lanes) {
        if (!mayBegin(text.data() + place, marks)) continue;
        for (std::size_t lane = place; lane < place + lanes; ++lane) {
            if (standsAt(text, lane, marks)) return lane;
        }
    }
    for (; place < text.size(); ++place) {
        if (standsAt(text, place, marks)) return place;
    }
    return std::string_view::npos;
}

}  // namespace fleetwise
