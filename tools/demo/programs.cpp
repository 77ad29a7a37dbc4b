#include "demo/programs.h"

#include <spawn.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string_view>
#include <utility>

namespace fleetwise::demo {

namespace {

constexpr int secondsToEnd = 5;
constexpr int openFileDescriptor = 10;

std::error_code errorOf(int number) {
    return {number, std::generic_category()};
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    all.reserve(texts.size() + 1);
    for (std::string& text : texts)
        all.push_back(text.data());
    all.push_back(nullptr);
    return all;
}

void addFileActions(::posix_spawn_file_actions_t& files, const Launch& launch) {
    if (launch.input >= 0) ::posix_spawn_file_actions_adddup2(&files, launch.input, STDIN_FILENO);
    if (!launch.workingDirectory.empty())
        ::posix_spawn_file_actions_addchdir_np(&files, launch.workingDirectory.c_str());
    if (!launch.openFile.empty())
        ::posix_spawn_file_actions_addopen(&files, openFileDescriptor, launch.openFile.c_str(),
                                           O_WRONLY | O_APPEND, 0);
}

tl::expected<pid_t, std::error_code> spawn(Launch launch) {
    ::posix_spawn_file_actions_t files;
    ::posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawnattr_init(&attributes);
    addFileActions(files, launch);
    ::sigset_t ignoredHere;
    ::sigemptyset(&ignoredHere);
    ::sigaddset(&ignoredHere, SIGPIPE);
    ::posix_spawnattr_setsigdefault(&attributes, &ignoredHere);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t pid = 0;
    const int error =
        ::posix_spawn(&pid, launch.command.front().c_str(), &files, &attributes,
                      pointers(launch.command).data(), pointers(launch.environment).data());
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    if (error != 0) return tl::unexpected(errorOf(error));
    return pid;
}

ExitStatus exitStatus(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void writeAll(const FileDescriptor& pipe, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(pipe.get(), text.data(), text.size());
        if (count <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

}  // namespace

std::vector<std::string> environmentIn(const std::string& home) {
    const std::array<std::pair<std::string, std::string>, 4> moved{{
        {"HOME=", home},
        {"XDG_CONFIG_HOME=", home + "/.config"},
        {"XDG_DATA_HOME=", home + "/.local/share"},
        {"XDG_CACHE_HOME=", home + "/.cache"},
    }};
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        bool isMoved = false;
        for (const auto& [name, value] : moved)
            isMoved = isMoved || text.starts_with(name);
        if (!isMoved) variables.emplace_back(text);
    }
    for (const auto& [name, value] : moved)
        variables.push_back(name + value);
    return variables;
}

tl::expected<Pipe, std::error_code> Pipe::make() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return tl::unexpected(errorOf(errno));
    for (const int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

tl::expected<ExitStatus, std::error_code> run(Launch launch, const std::string& input) {
    auto pipe = Pipe::make();
    if (!pipe) return tl::unexpected(pipe.error());
    launch.input = pipe->reading.get();
    const auto pid = spawn(std::move(launch));
    if (!pid) return tl::unexpected(pid.error());
    pipe->reading = FileDescriptor();
    writeAll(pipe->writing, input);
    pipe->writing = FileDescriptor();
    int status = 0;
    if (::waitpid(*pid, &status, 0) < 0) return tl::unexpected(errorOf(errno));
    return exitStatus(status);
}

tl::expected<RunningProgram, std::error_code> RunningProgram::start(Launch launch) {
    return spawn(std::move(launch)).map([](pid_t started) { return RunningProgram(started); });
}

RunningProgram::RunningProgram(RunningProgram&& other) noexcept
    : pid(std::exchange(other.pid, 0)), status(other.status) {}

RunningProgram::~RunningProgram() {
    if (pid == 0 || ended()) return;
    ::kill(pid, SIGTERM);
    for (int tenths = 0; tenths < secondsToEnd * 10; ++tenths) {
        if (ended()) return;
        ::usleep(100'000);
    }
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
}

std::optional<ExitStatus> RunningProgram::ended() {
    int raw = 0;
    if (pid != 0 && ::waitpid(pid, &raw, WNOHANG) == pid) {
        pid = 0;
        status = exitStatus(raw);
    }
    return status;
}

}  // namespace fleetwise::demo
