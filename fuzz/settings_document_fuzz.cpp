// Any bytes as an agent's settings: what is read comes back the same from what is printed of it.

#include "sources/settings_document.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    const auto document = parseSettings(std::string(data, data + size));
    if (!document) return 0;
    const std::string printed = printSettings(*document);
    const auto again = parseSettings(printed);
    if (again != document || printSettings(*again) != printed) __builtin_trap();
    return 0;
}
