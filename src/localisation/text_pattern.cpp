#include "localisation/text_pattern.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr std::string_view perCentSign = "%%";

struct Placeholder {
    int number = 0;  ///< of its argument, 0 where the wording does not number it
    char kind = '@';
    std::size_t length = 0;
};

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// The placeholder that `text`, at a per cent sign, begins with.
std::optional<Placeholder> leadingPlaceholder(std::string_view text) {
    const auto at = [&](std::size_t index) { return index < text.size() ? text[index] : '\0'; };
    Placeholder found;
    std::size_t position = 1;
    if (isDigit(at(1)) && at(1) != '0' && at(2) == '$') {
        found.number = at(1) - '0';
        position = 3;
    }
    const bool hasPrecision = at(position) == '.' && isDigit(at(position + 1));
    if (hasPrecision) position += 2;
    found.kind = at(position);
    found.length = position + 1;
    const bool isKnown = found.kind == 'f' || found.kind == '@' || found.kind == 'd';
    if (!isKnown || (hasPrecision && found.kind != 'f')) return {};
    return found;
}

/// Collects the placeholders of one wording and notices when they contradict each other.
class PlaceholderList {
public:
    explicit PlaceholderList(std::map<int, char>& kinds) : kindOfArgument(kinds) {}

    bool add(const Placeholder& placeholder) {
        (placeholder.number == 0 ? counted : numbered) += 1;
        if (counted > 0 && numbered > 0) return false;
        const int argument = placeholder.number == 0 ? counted : placeholder.number;
        return kindOfArgument.try_emplace(argument, placeholder.kind).first->second ==
               placeholder.kind;
    }

private:
    std::map<int, char>& kindOfArgument;
    int counted = 0;
    int numbered = 0;
};

}  // namespace

std::optional<TextPattern> textPattern(std::string_view wording) {
    TextPattern pattern;
    PlaceholderList list(pattern.placeholders);
    for (;;) {
        const std::size_t plain = std::min(wording.find('%'), wording.size());
        pattern.printfForm += wording.substr(0, plain);
        wording.remove_prefix(plain);
        if (wording.empty()) return pattern;
        std::size_t length = perCentSign.size();
        if (wording.starts_with(perCentSign)) {
            pattern.printfForm += perCentSign;
        } else {
            const auto placeholder = leadingPlaceholder(wording);
            if (!placeholder || !list.add(*placeholder)) return {};
            length = placeholder->length;
            pattern.printfForm += wording.substr(0, length);
            if (placeholder->kind == '@') pattern.printfForm.back() = 's';
        }
        wording.remove_prefix(length);
    }
}

}  // namespace fleetwise
