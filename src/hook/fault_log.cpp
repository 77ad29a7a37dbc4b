#include "hook/fault_log.h"

#include "foundation/file_descriptor.h"

#include <fcntl.h>

#include <cstdio>
#include <cstdlib>

namespace fleetwise::hook {

void logFault(double now, std::string_view event, std::string_view fault) {
    const char* path = std::getenv("FLEETWISE_HOOK_LOG");
    if (path == nullptr || *path == '\0') return;
    const FileDescriptor file(
        ::open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600));
    if (!file) return;
    ::dprintf(file.get(), "%.3f %.*s: %.*s\n", now, static_cast<int>(event.size()), event.data(),
              static_cast<int>(fault.size()), fault.data());
}

}  // namespace fleetwise::hook
