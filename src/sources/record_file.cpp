#include "sources/record_file.h"

#include "foundation/directory.h"

namespace fleetwise {

bool RecordFile::istGewoehnlicheDatei(const std::string& path) {
    const auto entry = inspectFile(path);
    return entry && entry->kind == FileKind::regular;
}

}  // namespace fleetwise
