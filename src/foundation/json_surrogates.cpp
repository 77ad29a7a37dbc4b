#include "foundation/json_surrogates.h"

#include <charconv>

namespace fleetwise {

namespace {

constexpr std::size_t escapeLength = replacementEscape.size();  // \uXXXX

/// The code unit of the escape \uXXXX at the front of `text`.
std::optional<unsigned> escapedUnit(std::string_view text) {
    if (text.size() < escapeLength || !text.starts_with("\\u")) return {};
    unsigned unit = 0;
    const char* digits = text.data() + 2;
    const auto [end, error] = std::from_chars(digits, digits + 4, unit, 16);
    if (error != std::errc() || end != digits + 4) return {};
    return unit;
}

bool isHighSurrogate(unsigned unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(unsigned unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

std::size_t findLoneSurrogate(std::string_view json, std::size_t from) {
    for (auto at = json.find('\\', from); at < json.size(); at = json.find('\\', at)) {
        const auto unit = escapedUnit(json.substr(at));
        if (!unit) {
            at += 2;  // an escape of one character, which may be a backslash
        } else if (isHighSurrogate(*unit) &&
                   isLowSurrogate(escapedUnit(json.substr(at + escapeLength)).value_or(0))) {
            at += 2 * escapeLength;
        } else if (isHighSurrogate(*unit) || isLowSurrogate(*unit)) {
            return at;
        } else {
            at += escapeLength;
        }
    }
    return std::string_view::npos;
}

std::optional<std::string> withoutLoneSurrogates(std::string_view json) {
    auto at = findLoneSurrogate(json);
    if (at == std::string_view::npos) return {};
    std::string mended(json);
    for (; at != std::string_view::npos; at = findLoneSurrogate(mended, at + escapeLength)) {
        mended.replace(at, escapeLength, replacementEscape);
    }
    return mended;
}

}  // namespace fleetwise
