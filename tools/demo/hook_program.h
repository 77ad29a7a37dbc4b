#pragma once

#include "foundation/json.h"

#include <tl/expected.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise::demo {

/// The hook as an agent runs it.
class HookProgram {
public:
    /// `home` is the home folder it is to work in.
    HookProgram(std::string program, const std::string& home);

    /// Runs it to its end. The error is a message.
    tl::expected<void, std::string> run(std::string_view event, const Json& payload) const;

private:
    std::string program;
    std::vector<std::string> environment;
};

}  // namespace fleetwise::demo
