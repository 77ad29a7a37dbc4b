// The process table of Linux: /proc, as proc(5) describes it.

#include "foundation/directory.h"
#include "foundation/file_descriptor.h"
#include "foundation/text.h"
#include "sources/process_table.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>

namespace fleetwise {

namespace {

constexpr std::string_view deletedMark = " (deleted)";

/// The first 4 KiB of a file below /proc; these files are made as they are read and have no size.
std::optional<std::string> readProcFile(std::int32_t pid, const char* name) {
    const std::string path = fmt::format("/proc/{}/{}", pid, name);
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) return {};
    std::array<char, 4096> buffer{};
    const ssize_t got = ::read(file.get(), buffer.data(), buffer.size());
    if (got <= 0) return {};
    return std::string(buffer.data(), static_cast<std::size_t>(got));
}

template <typename Number>
std::optional<Number> parsed(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return number;
}

/// The blank-separated field `number` of /proc/PID/stat, counted from 1 as proc(5) does. The
/// second is the name in parentheses, which may itself hold blanks and parentheses.
std::string_view statField(std::string_view stat, int number) {
    const auto nameEnd = stat.rfind(')');
    if (nameEnd == std::string_view::npos) return {};
    stat.remove_prefix(nameEnd + 1);
    for (int field = 3; !stat.empty(); ++field) {
        stat.remove_prefix(std::min(stat.find_first_not_of(' '), stat.size()));
        const std::string_view value = stat.substr(0, stat.find(' '));
        if (field == number) return trimmed(value);
        stat.remove_prefix(value.size());
    }
    return {};
}

/// Where a link leads; nothing where there is none, and `mayNotLook` where it may not be read.
struct LinkTarget {
    std::optional<std::string> path;
    bool mayNotLook = false;
};

LinkTarget linkTarget(const std::string& link) {
    std::array<char, 4096> buffer{};
    const ssize_t length = ::readlink(link.c_str(), buffer.data(), buffer.size());
    if (length <= 0) return {.path = {}, .mayNotLook = length < 0 && errno == EACCES};
    return {.path = std::string(buffer.data(), static_cast<std::size_t>(length))};
}

std::string_view withoutDeletedMark(std::string_view path) {
    if (path.ends_with(deletedMark)) path.remove_suffix(deletedMark.size());
    return path;
}

/// Where /proc/PID/`name` leads, also if that has since been removed.
std::optional<std::string> procLink(std::int32_t pid, const char* name) {
    const auto target = linkTarget(fmt::format("/proc/{}/{}", pid, name)).path;
    return target ? std::optional(std::string(withoutDeletedMark(*target))) : std::nullopt;
}

/// By the real user in /proc/PID/status: the folder itself belongs to root where the process hides
/// its memory.
bool isOfThisUser(std::int32_t pid) {
    constexpr std::string_view key = "\nUid:\t";
    const auto status = readProcFile(pid, "status");
    if (!status) return false;
    const auto at = status->find(key);
    if (at == std::string::npos) return false;
    const std::string_view ids = std::string_view(*status).substr(at + key.size());
    return parsed<::uid_t>(ids.substr(0, ids.find('\t'))) == ::getuid();
}

/// What the kernel calls a process whose program may not be looked up: the first 15 bytes of its
/// program's name, unless it gave itself another.
bool isCalled(std::int32_t pid, std::span<const std::string_view> names) {
    constexpr std::size_t longestName = 15;
    const auto called = readProcFile(pid, "comm");
    if (!called) return false;
    return std::any_of(names.begin(), names.end(), [&](std::string_view name) {
        return trimmed(*called) == name.substr(0, longestName);
    });
}

bool runsOneOf(std::int32_t pid, std::span<const std::string_view> names) {
    const LinkTarget program = linkTarget(fmt::format("/proc/{}/exe", pid));
    if (!program.path) return program.mayNotLook && isCalled(pid, names);
    const std::string_view path = withoutDeletedMark(*program.path);
    return std::ranges::find(names, path.substr(path.find_last_of('/') + 1)) != names.end();
}

std::optional<Date> readBootTime() {
    constexpr std::string_view key = "btime ";
    std::ifstream lines("/proc/stat");
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(key)) continue;
        const auto seconds = parsed<std::int64_t>(std::string_view(line).substr(key.size()));
        if (seconds) return dateFromSeconds(static_cast<double>(*seconds));
    }
    return {};
}

class LinuxProcessTable final : public ProcessTable {
public:
    bool exists(std::int32_t pid) const override {
        return pid > 0 && (::kill(pid, 0) == 0 || errno == EPERM);
    }

    std::optional<Process> process(std::int32_t pid) const override {
        const auto stat = readProcFile(pid, "stat");
        if (!stat) return {};
        const auto parent = parsed<std::int32_t>(statField(*stat, 4));
        const auto start = parsed<std::uint64_t>(statField(*stat, 22));
        if (!parent || !start) return {};
        return Process{.parent = *parent, .start = *start};
    }

    std::optional<std::string> executable(std::int32_t pid) const override {
        // Of a program that was updated while it runs the old file is gone; its path still tells
        // which program it is.
        return procLink(pid, "exe");
    }

    std::optional<std::string> applicationScope(std::int32_t pid) const override {
        const auto groups = readProcFile(pid, "cgroup");
        if (!groups) return {};
        // "0::/user.slice/…/app.slice/app-org.kde.konsole-4711.scope", one line per hierarchy.
        // Some terminals make groups of their own below their unit, one for each tab.
        std::string_view rest = *groups;
        while (!rest.empty()) {
            const std::string_view name = rest.substr(0, rest.find_first_of("/\n"));
            rest.remove_prefix(std::min(name.size() + 1, rest.size()));
            if (name.starts_with("app-") && name.ends_with(".scope")) return std::string(name);
        }
        return {};
    }

    std::vector<std::int32_t> processesOf(
        std::span<const std::string_view> fileNames) const override {
        std::vector<std::int32_t> pids;
        for (const DirectoryEntry& entry : listDirectory("/proc")) {
            const auto pid = parsed<std::int32_t>(entry.name);
            if (pid && runsOneOf(*pid, fileNames) && isOfThisUser(*pid)) pids.push_back(*pid);
        }
        std::sort(pids.begin(), pids.end());
        return pids;
    }

    std::optional<Date> startedAt(std::int32_t pid) const override {
        static const std::optional<Date> bootTime = readBootTime();
        static const auto ticksPerSecond = static_cast<double>(::sysconf(_SC_CLK_TCK));
        const auto found = process(pid);
        if (!found || !bootTime) return {};
        return *bootTime + Seconds(static_cast<double>(found->start) / ticksPerSecond);
    }

    std::optional<std::string> workingDirectory(std::int32_t pid) const override {
        return procLink(pid, "cwd");
    }

    std::vector<std::string> openFiles(std::int32_t pid) const override {
        std::vector<std::string> paths;
        const std::string folder = fmt::format("/proc/{}/fd", pid);
        for (const DirectoryEntry& entry : listDirectory(folder)) {
            auto path = linkTarget(joinPath(folder, entry.name)).path;
            if (path && path->starts_with('/') && !path->ends_with(deletedMark))
                paths.push_back(*std::move(path));
        }
        return paths;
    }
};

}  // namespace

const ProcessTable& ProcessTable::system() {
    static const LinuxProcessTable table;
    return table;
}

}  // namespace fleetwise
