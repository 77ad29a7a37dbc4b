#include "demo/codex_stand_in.h"

#include <filesystem>
#include <utility>

namespace fleetwise::demo {

namespace {

/// The copy in the home, made once.
tl::expected<std::string, std::error_code> copyOf(const std::string& program,
                                                  const std::string& home) {
    const std::filesystem::path copy = home + "/.codex/bin/codex";
    std::error_code fault;
    std::filesystem::create_directories(copy.parent_path(), fault);
    if (!fault) {
        std::filesystem::copy_file(program, copy, std::filesystem::copy_options::skip_existing,
                                   fault);
    }
    if (fault) return tl::unexpected(fault);
    return copy.string();
}

}  // namespace

tl::expected<CodexStandIn, std::error_code> CodexStandIn::start(const std::string& program,
                                                                const std::string& home,
                                                                const std::string& folder,
                                                                const std::string& rollout) {
    const auto copy = copyOf(program, home);
    if (!copy) return tl::unexpected(copy.error());
    auto pipe = Pipe::make();
    if (!pipe) return tl::unexpected(pipe.error());
    auto started = RunningProgram::start({.command = {*copy},
                                          .environment = environmentIn(home),
                                          .input = pipe->reading.get(),
                                          .workingDirectory = folder,
                                          .openFile = rollout});
    if (!started) return tl::unexpected(started.error());
    return CodexStandIn(std::move(pipe->writing), *std::move(started));
}

CodexStandIn::CodexStandIn(FileDescriptor givenInput, RunningProgram givenProcess)
    : input(std::move(givenInput)), process(std::move(givenProcess)) {}

}  // namespace fleetwise::demo
