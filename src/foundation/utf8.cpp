#include "foundation/utf8.h"

#include <algorithm>

namespace fleetwise {

std::size_t utf8SequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
    const unsigned char lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (byte(1) < lowest || byte(1) > highest) return 0;
    for (std::size_t index = 2; index < length; ++index) {
        if ((byte(index) & 0xC0) != 0x80) return 0;
    }
    return length;
}

std::string wellFormedUtf8(std::string_view text) {
    std::string mended;
    mended.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        mended += length == 0 ? replacementCharacter : text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(1, length));
    }
    return mended;
}

}  // namespace fleetwise
