#include "foundation/text.h"

#include "foundation/utf8.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

bool isControl(std::string_view sequence) {
    const auto lead = static_cast<unsigned char>(sequence.front());
    if (sequence.size() == 1) return lead < 0x20 || lead == 0x7F;
    // U+0080 to U+009F are terminal controls too.
    return sequence.size() == 2 && lead == 0xC2 && static_cast<unsigned char>(sequence[1]) < 0xA0;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

std::string asciiLowercased(std::string_view text) {
    std::string lowered(text);
    for (char& character : lowered) {
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character + 32);
    }
    return lowered;
}

std::string shortenedText(std::string_view text, std::size_t limit) {
    std::size_t characters = 0;
    std::size_t lastStart = 0;
    for (std::size_t position = 0; position < text.size();) {
        if (characters == limit) {
            return limit == 0 ? std::string() : std::string(text.substr(0, lastStart)) + "…";
        }
        lastStart = position;
        position += std::max<std::size_t>(1, utf8SequenceLength(text.substr(position)));
        ++characters;
    }
    return std::string(text);
}

std::string printable(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0) {
            line += replacementCharacter;
        } else if (isControl(text.substr(0, length))) {
            line += ' ';
        } else {
            line += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(1, length));
    }
    return line;
}

}  // namespace fleetwise
