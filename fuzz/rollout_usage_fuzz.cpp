// Bytes of a rollout: no line of them may do harm, and what is told of the models adds up to what
// is told of the days and the whole.

#include "cost/rollout_usage.h"
#include "cost/transcript_lines.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    static const Calendar calendar = ::date::locate_zone("Europe/Berlin");
    const std::string contents(data, data + size);
    const MemoryBytes bytes(contents);
    RolloutUsage usage(calendar);
    const auto done = LineSearch().forEachMarkedLine(
        bytes, contents.size(), RolloutUsage::marks,
        [&](std::string_view line) { return usage.add(line); },
        [](std::size_t) { return LineSearch::Going::on; });
    if (!done) std::abort();
    const SessionUsage read = usage.finish();
    if (read.cost.requests() != static_cast<std::int64_t>(read.requests.size())) std::abort();
    (void)read.cost.figures();
    return 0;
}
