#pragma once

#include "reactions/program_output.h"

namespace fleetwise {

/// Gives programs nothing to read, and drops what they say of errors. Takes at most a mebibyte.
class QtProgramOutput final : public ProgramOutput {
public:
    tl::expected<std::string, ProgramFailure> run(const std::vector<std::string>& command,
                                                  std::chrono::milliseconds limit) override;
};

}  // namespace fleetwise
