// Lines of Claude Code's prompt history, whole and cut anywhere: none may do harm, and what is kept
// of them must fit a line of the archive.

#include "fleet/archive_entry.h"
#include "fleet/prompt_history.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    const std::string lines(data, data + size);
    for (const auto& [id, prompt] : PromptHistory::parse(lines)) {
        if (id.empty() || prompt.text != archiveText(prompt.text)) std::abort();
    }
    return 0;
}
