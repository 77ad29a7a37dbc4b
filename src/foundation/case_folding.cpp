#include "foundation/text.h"
#include "foundation/utf8.h"

#include <locale.h>

#include <clocale>
#include <cstddef>
#include <cwctype>

namespace fleetwise {

namespace {

/// The system's Unicode tables of letters; null where it has none.
locale_t unicodeLetters() {
    static const locale_t letters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return letters;
}

/// The code point of one well-formed sequence.
char32_t decoded(std::string_view sequence) {
    const auto lead = static_cast<unsigned char>(sequence.front());
    const unsigned leadBits = sequence.size() == 1 ? lead : lead & (0x7FU >> sequence.size());
    char32_t codePoint = leadBits;
    for (const char next : sequence.substr(1)) {
        codePoint = (codePoint << 6) | (static_cast<unsigned char>(next) & 0x3FU);
    }
    return codePoint;
}

void appendEncoded(std::string& text, char32_t codePoint) {
    const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
    const auto appendTail = [&](unsigned shift) { append(0x80 | ((codePoint >> shift) & 0x3F)); };
    if (codePoint < 0x80) {
        append(codePoint);
    } else if (codePoint < 0x800) {
        append(0xC0 | (codePoint >> 6));
        appendTail(0);
    } else if (codePoint < 0x10000) {
        append(0xE0 | (codePoint >> 12));
        appendTail(6);
        appendTail(0);
    } else {
        append(0xF0 | (codePoint >> 18));
        appendTail(12);
        appendTail(6);
        appendTail(0);
    }
}

}  // namespace

std::string caseFolded(std::string_view text) {
    const locale_t letters = unicodeLetters();
    if (letters == nullptr) return asciiLowercased(text);
    std::string folded;
    folded.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0) {
            folded += text.front();
            text.remove_prefix(1);
            continue;
        }
        const auto letter = static_cast<wint_t>(decoded(text.substr(0, length)));
        appendEncoded(folded, static_cast<char32_t>(towlower_l(letter, letters)));
        text.remove_prefix(length);
    }
    return folded;
}

}  // namespace fleetwise
