#include "hook/long_texts.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace fleetwise::hook {

namespace {

constexpr std::size_t none = std::string_view::npos;
constexpr std::size_t longestEscape = 6;  // \uXXXX

/// Whether the character at `at` is taken for itself: an even number of backslashes precedes it.
bool isPlain(std::string_view json, std::size_t at) {
    std::size_t first = at;
    while (first > 0 && json[first - 1] == '\\')
        --first;
    return (at - first) % 2 == 0;
}

/// The quote that ends the text whose first character is at `begin`.
std::size_t closingQuote(std::string_view json, std::size_t begin) {
    std::size_t quote = json.find('"', begin);
    while (quote != none && !isPlain(json, quote))
        quote = json.find('"', quote + 1);
    return quote;
}

/// The last place up to `at` that lies within no escape.
std::size_t beforeEscape(std::string_view json, std::size_t at) {
    for (std::size_t back = 1; back < longestEscape; ++back) {
        const std::size_t start = at - back;
        if (json[start] != '\\' || !isPlain(json, start)) continue;
        const std::size_t length = json[start + 1] == 'u' ? longestEscape : 2;
        return start + length > at ? start : at;
    }
    return at;
}

}  // namespace

std::span<char> cutLongTexts(std::span<char> json) {
    const std::string_view text(json.data(), json.size());
    std::size_t kept = 0;   // so much of the result is in place
    std::size_t taken = 0;  // so much of the text went into it or was left out
    const auto keepUntil = [&](std::size_t end) {
        std::memmove(json.data() + kept, json.data() + taken, end - taken);
        kept += end - taken;
        taken = end;
    };
    for (std::size_t open = text.find('"'); open != none;) {
        const std::size_t close = closingQuote(text, open + 1);
        if (close == none) break;
        if (close - open - 1 > longTextBytes) {
            keepUntil(beforeEscape(text, open + 1 + longTextBytes));
            taken = close;
        }
        open = text.find('"', close + 1);
    }
    keepUntil(text.size());
    return json.first(kept);
}

}  // namespace fleetwise::hook
