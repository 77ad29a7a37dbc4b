// Bytes of a transcript: no line of them may do harm, and reading them in two pieces, in whatever
// chunks, must tell the same as reading them at once. The first two bytes choose the cut and the
// chunk.

#include "cost/transcript_label.h"
#include "cost/transcript_lines.h"
#include "cost/transcript_reading_builder.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace fleetwise;

struct Told {
    TranscriptReading reading;
    TranscriptLabelFacts label;
    std::uint64_t offset = 0;

    bool operator==(const Told&) const = default;
};

/// What the lines up to `end` add to `known`.
Told readOn(std::string_view contents, Told known, std::uint64_t end, std::size_t chunk) {
    const MemoryBytes bytes(contents);
    TranscriptReadingBuilder builder(std::move(known.reading));
    JsonReader json;
    const auto offset =
        LineSplitter(bytes, chunk)
            .forEachLine(known.offset, end, [&](std::string_view line, std::uint64_t) {
                builder.add(line);
                known.label.add(json, line, {.isInHead = true, .isInTail = true});
            });
    known.reading = builder.finish();
    known.offset = offset.value();
    return known;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::string contents(data + 2, data + size);
    const std::size_t cut = contents.size() * data[0] / 255;
    const std::size_t chunk = data[1] + 1U;

    const Told whole =
        readOn(contents, {}, contents.size(), LineSplitter<MemoryBytes>::defaultChunk);
    const Told pieces = readOn(contents, readOn(contents, {}, cut, chunk), contents.size(), chunk);
    if (!(pieces == whole)) std::abort();
    (void)whole.label.label();
    return 0;
}
