#pragma once

#include "foundation/date.h"

#include <string>
#include <string_view>

namespace fleetwise::testing {

/// A new empty folder that is removed, with all in it, at the end of its scope.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    const std::string& path() const { return root; }

    /// The full path of `name` below this folder.
    std::string at(std::string_view name) const;

    /// Writes `name`, making the folders on the way to it, and returns its full path.
    std::string write(std::string_view name, std::string_view contents) const;

    /// Appends to `name`, which is created where it is missing; returns its full path.
    std::string append(std::string_view name, std::string_view contents) const;

    std::string makeDirectory(std::string_view name) const;
    std::string makeLink(std::string_view name, const std::string& target) const;
    std::string makeFifo(std::string_view name) const;

private:
    std::string root;
};

/// Sets the modification date of the file at `path`.
void setModificationDate(const std::string& path, Date date);

/// The file `name` of tests/data.
std::string dataPath(std::string_view name);

/// The root of the source tree.
std::string sourceDirectory();

/// The whole file; fails the test where it cannot be read.
std::string contentsOf(const std::string& path);

/// The text with the readable bytes behind it that the JSON reader needs.
std::string padded(std::string text);

}  // namespace fleetwise::testing
