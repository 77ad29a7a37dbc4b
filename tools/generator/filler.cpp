// The block is a row of units of equal length, each of which is whole JSON string text by itself:
// any slice that begins and ends at a unit's edge cuts neither an escape nor a UTF-8 character.

#include "generator/filler.h"

#include <algorithm>
#include <array>

namespace fleetwise::generator {

namespace {

constexpr std::size_t unitBytes = 64;
constexpr std::size_t blockUnits = 16'384;

constexpr std::array<std::string_view, 32> words{
    "parser",  "table",  "window", "reads",  "the",    "cache",  "folder", "with",
    "session", "before", "writes", "number", "tests",  "branch", "report", "after",
    "returns", "value",  "every",  "editor", "module", "import", "field",  "without",
    "message", "states", "record", "longer", "index",  "server", "query",  "and"};

constexpr std::array<std::string_view, 6> endings{"\\n", "\\n", "\\n", "\\t\\\"", "\\\\", "für"};

std::string makeUnit(Random& random) {
    const std::string_view ending = random.pick(endings);
    std::string unit;
    while (unit.size() < unitBytes) {
        unit += random.pick(words);
        unit += ' ';
    }
    unit.resize(unitBytes - ending.size());
    return unit.append(ending);
}

}  // namespace

Filler::Filler(Random& random) {
    block.reserve(blockUnits * unitBytes);
    for (std::size_t unit = 0; unit < blockUnits; ++unit)
        block += makeUnit(random);
}

std::string_view Filler::escapedText(Random& random, std::size_t bytes) const {
    const std::size_t units = std::clamp(bytes, unitBytes, maximumBytes) / unitBytes;
    const std::size_t first = random.below(blockUnits - units + 1);
    return std::string_view(block).substr(first * unitBytes, units * unitBytes);
}

std::string Filler::phrase(Random& random, int count) {
    std::string text;
    for (int index = 0; index < count; ++index) {
        if (index > 0) text += ' ';
        text += word(random);
    }
    return text;
}

std::string Filler::sentence(Random& random, int count) {
    return phrase(random, count) + '.';
}

std::string_view Filler::word(Random& random) {
    return random.pick(words);
}

}  // namespace fleetwise::generator
