// Bytes of a transcript: no line of them may do harm, searching them in blocks of any size must
// tell the same, and so must reading them twice. The first byte chooses the block.

#include "cost/transcript_lines.h"
#include "cost/transcript_usage_reader.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace fleetwise;

SessionCost readIn(const std::string& contents, std::size_t block) {
    static const Calendar calendar = ::date::locate_zone("Europe/Berlin");
    const MemoryBytes bytes(contents);
    TranscriptUsageReader usage(calendar);
    const auto done = LineSearch(block).forEachMarkedLine(
        bytes, contents.size(), UsageLine::marks,
        [&](std::string_view line) {
            return usage.add(line, TranscriptUsageReader::Writer::session);
        },
        [](std::size_t) { return LineSearch::Going::on; });
    if (!done) std::abort();
    return usage.finish();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::string contents(data + 1, data + size);
    const SessionCost whole = readIn(contents, LineSearch::defaultBlock);
    const SessionCost pieces = readIn(contents, data[0] + 1U);
    if (whole != pieces) std::abort();
    if (whole.requests() != static_cast<std::int64_t>(whole.trail.size())) std::abort();
    (void)whole.figures();
    return 0;
}
