// Bytes of a rollout: no line of them may do harm, and what is told of the models adds up to what
// is told of the days and the whole.

#include "cost/rollout_usage_reader.h"
#include "cost/transcript_lines.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    static const Calendar calendar = ::date::locate_zone("Europe/Berlin");
    const std::string contents(data, data + size);
    const MemoryBytes bytes(contents);
    RolloutUsageReader usage(calendar);
    const auto done = LineSearch().forEachMarkedLine(
        bytes, contents.size(), RolloutUsageReader::marks,
        [&](std::string_view line) {
            usage.add(line);
            return LineSearch::Going::on;
        },
        [](std::size_t) { return LineSearch::Going::on; });
    if (!done) std::abort();
    const SessionCost read = usage.finish();
    if (read.requests() != static_cast<std::int64_t>(read.trail.size())) std::abort();
    (void)read.figures();
    return 0;
}
