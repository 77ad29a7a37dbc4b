// The process table of Linux: /proc, as proc(5) describes it.

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
        std::array<char, 4096> target{};
        const std::string link = fmt::format("/proc/{}/exe", pid);
        const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
        if (length <= 0) return {};
        std::string_view path(target.data(), static_cast<std::size_t>(length));
        // A program that was updated while it runs: the old file is gone, its path still tells
        // which program it is.
        if (path.ends_with(deletedMark)) path.remove_suffix(deletedMark.size());
        return std::string(path);
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
};

}  // namespace

const ProcessTable& ProcessTable::system() {
    static const LinuxProcessTable table;
    return table;
}

}  // namespace fleetwise
