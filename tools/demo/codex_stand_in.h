#pragma once

#include "demo/programs.h"
#include "foundation/file_descriptor.h"

#include <string>

namespace fleetwise::demo {

/// A process that looks like a running Codex: its program's file is named "codex", it works in a
/// folder and holds a rollout open. It does nothing, and it ends with this object and with the
/// process that started it.
class CodexStandIn {
public:
    /// `program` is one that waits for the end of its input; a copy of it is made in the home.
    static tl::expected<CodexStandIn, std::error_code> start(const std::string& program,
                                                             const std::string& home,
                                                             const std::string& folder,
                                                             const std::string& rollout);

private:
    CodexStandIn(FileDescriptor givenInput, RunningProgram givenProcess);

    FileDescriptor input;  ///< the other end of the process's standard input
    RunningProgram process;
};

}  // namespace fleetwise::demo
