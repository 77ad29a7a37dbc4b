#pragma once

#include <optional>
#include <string>

namespace fleetwise {

/// The environment variable `name`; nothing where it is not set.
std::optional<std::string> environmentVariable(const std::string& name);

/// The full path of a program on PATH, or of one given by its path; nothing where there is none
/// that can be run.
std::optional<std::string> findProgram(const std::string& program);

/// The resource `name` (such as "share/fleetwise" or "lib/fleetwise/fleetwise-hook") of this
/// program: below the folder that holds the program's own folder, so that the build tree and the
/// installation are found alike. Nothing where there is none.
std::optional<std::string> programResource(const std::string& name);

/// The hook program that came with this program: beside it in the build tree, below "lib" in the
/// installation. Nothing where none came with it.
std::optional<std::string> bundledHook();

}  // namespace fleetwise
