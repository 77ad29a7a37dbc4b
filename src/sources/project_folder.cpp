#include "sources/project_folder.h"

#include "foundation/text.h"

namespace fleetwise {

std::string projectFolderName(std::string_view cwd) {
    std::string name;
    name.reserve(cwd.size());
    // Well-formed by now: what was no UTF-8 has become a character of its own.
    for (const char character : printable(cwd)) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isKept = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                            (byte >= '0' && byte <= '9');
        const bool isContinuation = (byte & 0xC0) == 0x80;
        if (isKept) {
            name += character;
        } else if (!isContinuation) {
            name += byte >= 0xF0 ? "--" : "-";
        }
    }
    return name;
}

}  // namespace fleetwise
