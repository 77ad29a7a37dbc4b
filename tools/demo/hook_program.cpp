#include "demo/hook_program.h"

#include "demo/programs.h"

#include <fmt/format.h>

namespace fleetwise::demo {

HookProgram::HookProgram(std::string givenProgram, const std::string& home)
    : program(std::move(givenProgram)), environment(environmentIn(home)) {}

tl::expected<void, std::string> HookProgram::run(std::string_view event,
                                                 const Json& payload) const {
    const auto status =
        demo::run({.command = {program, std::string(event)}, .environment = environment},
                  encodeJson(payload));
    if (status) return {};
    return tl::unexpected(fmt::format("cannot run {}: {}", program, status.error().message()));
}

}  // namespace fleetwise::demo
