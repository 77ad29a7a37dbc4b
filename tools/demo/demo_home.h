#pragma once

#include "generator/generate.h"

#include <tl/expected.hpp>

#include <string>

namespace fleetwise::demo {

/// A home folder with a generated fleet.
class DemoHome {
public:
    struct Wish {
        std::string folder;  ///< empty: a new one among the temporary files
        bool isKept = false;
        std::uint64_t seed = 1;
        std::int32_t pid = 1;  ///< the process that running sessions claim
    };

    /// The error is a message.
    static tl::expected<DemoHome, std::string> make(const Wish& wish);

    DemoHome(DemoHome&& other) noexcept;
    DemoHome& operator=(DemoHome&&) = delete;
    /// Removes the folder, unless it is to be kept or was given.
    ~DemoHome();

    const std::string& path() const { return root; }
    bool isRemovedAtEnd() const { return isRemoved; }

    /// The running sessions come first.
    const generator::Books& books() const { return written; }

private:
    DemoHome() = default;

    std::string root;
    bool isRemoved = false;
    generator::Books written;
};

}  // namespace fleetwise::demo
