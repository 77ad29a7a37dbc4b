// Any bytes as a file of the agent's registry: an entry that can name a process, or none.

#include "foundation/json_reader.h"
#include "sources/session_registry.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    std::string text(data, data + size);
    text.reserve(size + jsonPadding);
    const auto entry = SessionRegistry::decode(text);
    if (!entry) return 0;
    if (entry->pid <= 0 || entry->sessionId.empty()) __builtin_trap();
    if (const auto name = entry->userGivenName(); name && name->empty()) __builtin_trap();
    return 0;
}
