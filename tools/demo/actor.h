#pragma once

#include <tl/expected.hpp>

#include <string>

namespace fleetwise::demo {

/// A session that takes part in the demo.
class Actor {
public:
    virtual ~Actor() = default;

    /// Takes the next step; false while the session rests. The error is a message.
    virtual tl::expected<bool, std::string> act() = 0;
};

}  // namespace fleetwise::demo
