#include "foundation/file_descriptor.h"
#include "localisation/localisation.h"
#include "platform/child_processes.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <spawn.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace fleetwise {

namespace {

using namespace std::chrono_literals;

/// How often a child is asked for that the system gives no descriptor of.
constexpr auto pollInterval = 100ms;

/// The exit status of a child that a signal ended, without the signal's number.
constexpr std::int32_t firstOfSignals = 128;

/// What posix_spawn is to do in the child before the program begins.
class SpawnRules {
public:
    SpawnRules() {
        ::posix_spawnattr_init(&attributes);
        ::posix_spawn_file_actions_init(&files);
        ::sigset_t none;
        ::sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_setpgroup(&attributes, 0);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setsigdefault(&attributes, &all);
        ::posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::posix_spawn_file_actions_addopen(&files, standard, "/dev/null", O_RDWR, 0);
        ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    }
    SpawnRules(const SpawnRules&) = delete;
    SpawnRules& operator=(const SpawnRules&) = delete;
    ~SpawnRules() {
        ::posix_spawn_file_actions_destroy(&files);
        ::posix_spawnattr_destroy(&attributes);
    }

    ::posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_t files;
};

/// The texts in the form that the system takes, which changes none of them.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// The system would take only what comes before it.
bool holdsNull(const std::vector<std::string>& texts) {
    return std::ranges::any_of(
        texts, [](const std::string& text) { return text.find('\0') != std::string::npos; });
}

/// The id of the new process, or the error as errno.
tl::expected<::pid_t, int> spawn(const ChildCommand& command) {
    std::vector<std::string> words{command.executable};
    words.insert(words.end(), command.arguments.begin(), command.arguments.end());
    std::vector<std::string> variables;
    if (command.environment) {
        for (const auto& [name, value] : *command.environment)
            variables.push_back(std::string(name).append("=").append(value));
    }
    if (holdsNull(words) || holdsNull(variables)) return tl::unexpected(EINVAL);
    const auto arguments = pointersTo(words);
    const auto environment = pointersTo(variables);
    const SpawnRules rules;
    ::pid_t pid = 0;
    const int error =
        ::posix_spawn(&pid, words.front().c_str(), &rules.files, &rules.attributes,
                      arguments.data(), command.environment ? environment.data() : ::environ);
    if (error != 0) return tl::unexpected(error);
    return pid;
}

/// One that becomes readable when the process ends; −1 where the system has none to give: before
/// Linux 5.3, or where this program has too many.
int openDescriptor(::pid_t pid) {
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
}

/// Waits for the end of one process, and then ends itself.
class Child final : public QObject {
public:
    Child(::pid_t givenPid, ChildProcesses::Ended whenEnded, QObject* parent)
        : QObject(parent),
          pid(givenPid),
          ended(std::move(whenEnded)),
          descriptor(openDescriptor(pid)) {
        if (descriptor) {
            notifier =
                std::make_unique<QSocketNotifier>(descriptor.get(), QSocketNotifier::Type::Read);
            connect(notifier.get(), &QSocketNotifier::activated, this, [this] { look(); });
        } else {
            connect(&timer, &QTimer::timeout, this, [this] { look(); });
            timer.start(pollInterval);
        }
    }

private:
    void look() {
        ::siginfo_t found{};
        // The id stays the child's until it has been waited for.
        const int result = ::waitid(P_PID, static_cast<::id_t>(pid), &found, WEXITED | WNOHANG);
        if (result == 0 && found.si_pid == 0) return;
        timer.stop();
        if (notifier) notifier->setEnabled(false);
        const bool isExit = result == 0 && found.si_code == CLD_EXITED;
        const std::int32_t code = found.si_status + (isExit ? 0 : firstOfSignals);
        // Not from within the signal, since this may be destroyed by what follows.
        QTimer::singleShot(0, this, [this, code] {
            deleteLater();
            std::exchange(ended, {})(code);
        });
    }

    const ::pid_t pid;
    ChildProcesses::Ended ended;
    FileDescriptor descriptor;
    std::unique_ptr<QSocketNotifier> notifier;
    QTimer timer;
};

class LinuxChildProcesses final : public ChildProcesses {
public:
    tl::expected<void, std::string> start(const ChildCommand& command, Ended ended) override {
        const auto pid = spawn(command);
        if (!pid) {
            return tl::unexpected(localisedFormat("Das Programm ließ sich nicht starten: %@"_text,
                                                  std::generic_category().message(pid.error())));
        }
        // Its parent owns it.
        new Child(*pid, std::move(ended), &children);
        return {};
    }

private:
    QObject children;
};

}  // namespace

std::unique_ptr<ChildProcesses> makeChildProcesses() {
    return std::make_unique<LinuxChildProcesses>();
}

}  // namespace fleetwise
