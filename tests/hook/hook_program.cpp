#include "hook_program.h"

#include "foundation/file_descriptor.h"

#include <gtest/gtest.h>
#include <spawn.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace fleetwise::testing {

int exitStatusOf(pid_t process) {
    int status = 0;
    if (::waitpid(process, &status, 0) != process || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

pid_t HookProgram::start(const std::string& event, const std::string& payload) const {
    const FileDescriptor input(::open(home.path().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    const FileDescriptor output(
        ::open(home.at("printed").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    EXPECT_EQ(::write(input.get(), payload.data(), payload.size()),
              static_cast<ssize_t>(payload.size()));
    ::lseek(input.get(), 0, SEEK_SET);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input.get(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output.get(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output.get(), STDERR_FILENO);
    std::string program = FLEETWISE_HOOK;
    std::string name = event;
    std::string homeVariable = "HOME=" + home.path();
    std::string logVariable = "FLEETWISE_HOOK_LOG=" + home.at("faults");
    const std::array<char*, 3> arguments{program.data(), name.data(), nullptr};
    const std::array<char*, 3> environment{homeVariable.data(), logVariable.data(), nullptr};
    pid_t process = -1;
    EXPECT_EQ(::posix_spawn(&process, FLEETWISE_HOOK, &actions, nullptr, arguments.data(),
                            environment.data()),
              0);
    ::posix_spawn_file_actions_destroy(&actions);
    return process;
}

int HookProgram::run(const std::string& event, const std::string& payload) const {
    const int status = exitStatusOf(start(event, payload));
    EXPECT_EQ(contentsOf(home.at("printed")), "") << event;
    return status;
}

std::optional<StatusStore::Record> HookProgram::record(const std::string& sessionId) const {
    const std::string path = home.at(".claude/fleetwise/status/" + sessionId + ".json");
    if (!std::filesystem::exists(path)) return {};
    return StatusStore::decode(padded(contentsOf(path)));
}

std::vector<std::string> HookProgram::names(const std::string& folder) const {
    std::vector<std::string> found;
    const std::string path = home.at(".claude/fleetwise/" + folder);
    for (const auto& entry : std::filesystem::directory_iterator(path))
        found.push_back(entry.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace fleetwise::testing
