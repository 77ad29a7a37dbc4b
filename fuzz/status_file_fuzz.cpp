// Any bytes as a status file: a record or none, and whatever comes out of it.

#include "foundation/json_reader.h"
#include "sources/status_store.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    std::string text(data, data + size);
    text.reserve(size + jsonPadding);
    const auto record = StatusStore::decode(text);
    if (!record) return 0;
    if (record->sessionId.empty()) __builtin_trap();
    const auto watches = StatusStore::watches(&*record);
    if (watches.size() > record->monitors.size()) __builtin_trap();
    StatusStore::repairedState(record->state, record->event, record->subagents);
    return 0;
}
