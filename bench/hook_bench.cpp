#include "hook_bench.h"

#include "foundation/file_descriptor.h"

#include <nlohmann/json.hpp>
#include <spawn.h>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

namespace fleetwise {

namespace {

using Arguments = std::vector<std::string>;

constexpr std::size_t largePayload = 5'000'000;
constexpr int warmUps = 5;

std::vector<char*> pointersTo(Arguments& arguments) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Runs a program with the file `input` as its standard input and nothing to print to; its whole
/// time in microseconds.
double timeOf(Arguments arguments, const std::string& input) {
    const FileDescriptor in(::open(input.c_str(), O_RDONLY | O_CLOEXEC));
    const FileDescriptor out(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in.get(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, out.get(), STDOUT_FILENO);
    const std::vector<char*> pointers = pointersTo(arguments);
    const auto start = std::chrono::steady_clock::now();
    pid_t process = -1;
    if (::posix_spawnp(&process, pointers[0], &actions, nullptr, pointers.data(), environ) == 0) {
        ::waitpid(process, nullptr, 0);
    }
    const std::chrono::duration<double, std::micro> taken =
        std::chrono::steady_clock::now() - start;
    ::posix_spawn_file_actions_destroy(&actions);
    return taken.count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

nlohmann::ordered_json compare(const Arguments& hook, const Arguments& other,
                               const std::string& otherName, const std::string& input,
                               int repetitions) {
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int run = -warmUps; run < repetitions; ++run) {
        const double our = timeOf(hook, input);
        const double their = timeOf(other, input);
        if (run < 0) continue;
        ours.push_back(our);
        theirs.push_back(their);
    }
    const double our = median(ours);
    const double their = median(theirs);
    return {{"hookUs", std::round(our)},
            {otherName + "Us", std::round(their)},
            {"ratio", std::round(our / their * 100) / 100}};
}

/// What of the process's memory no other shares, in KiB.
long privateMemory(pid_t process) {
    std::ifstream lines("/proc/" + std::to_string(process) + "/smaps_rollup");
    long sum = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("Private_")) sum += std::atol(line.c_str() + line.find(':') + 1);
    }
    return sum;
}

/// Runs the program up to its exit and looks at it there.
long privateMemoryAtExit(Arguments arguments, const std::string& input) {
    const std::vector<char*> pointers = pointersTo(arguments);
    const pid_t process = ::fork();
    if (process == 0) {
        ::dup2(::open(input.c_str(), O_RDONLY), STDIN_FILENO);
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    ::ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACEEXIT);
    ::ptrace(PTRACE_CONT, process, nullptr, nullptr);
    ::waitpid(process, &status, 0);
    const long kibibytes = privateMemory(process);
    ::ptrace(PTRACE_DETACH, process, nullptr, nullptr);
    ::waitpid(process, &status, 0);
    return kibibytes;
}

std::string toolEnd(std::size_t outputBytes) {
    const std::string line = "-rw-r--r-- 1 dev dev  4096 Nov 21 02:04 src/some/file_of_many.cpp\n";
    std::string output;
    while (output.size() < outputBytes)
        output += line;
    const nlohmann::json payload{{"session_id", "b5e1c8f0-5a57-4b6e-9d63-0c3c4b8a7d10"},
                                 {"cwd", "/home/dev/work/demo"},
                                 {"permission_mode", "default"},
                                 {"tool_name", "Bash"},
                                 {"tool_input", {{"command", "ls -lR"}}},
                                 {"tool_response", {{"stdout", std::move(output)}}},
                                 {"duration_ms", 12}};
    return payload.dump() + "\n";
}

}  // namespace

int benchHook(const std::string& hook, int repetitions) {
    std::string home = (std::filesystem::temp_directory_path() / "fleetwise-bench-XXXXXX").string();
    if (::mkdtemp(home.data()) == nullptr) return 1;
    ::setenv("HOME", home.c_str(), 1);
    const std::string small = home + "/small.json";
    const std::string large = home + "/large.json";
    std::ofstream(small) << toolEnd(200);
    std::ofstream(large) << toolEnd(largePayload);

    const Arguments event{hook, "PostToolUse"};
    nlohmann::ordered_json result{
        {"event", compare(event, {"/bin/true"}, "true", small, repetitions)}};
    if (std::system("command -v node >/dev/null") == 0) {
        result["node"] = compare(event, {"node", "-e", "0"}, "node", small, repetitions / 5 + 1);
    }
    result["payload5MB"] = compare(event, {"cat"}, "cat", large, repetitions);
    result["privateKiB"] = privateMemoryAtExit(event, small);
    std::printf("%s\n", result.dump().c_str());
    std::filesystem::remove_all(home);
    return 0;
}

}  // namespace fleetwise
