// A signal handler may do hardly more than write to a pipe; the event loop reads the other end.

#include "platform/termination_signals.h"

#include "foundation/file_descriptor.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace fleetwise {

namespace {

constexpr std::array terminating{SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t writingEnd = -1;

extern "C" void tellOfSignal(int) {
    const int savedError = errno;
    const char told = 0;
    static_cast<void>(::write(writingEnd, &told, 1));
    errno = savedError;
}

class TerminationSignals final : public MainLoop::Subscription {
public:
    TerminationSignals(FileDescriptor givenReading, FileDescriptor givenWriting,
                       MainLoop::Action action)
        : reading(std::move(givenReading)),
          writing(std::move(givenWriting)),
          notifier(reading.get(), QSocketNotifier::Read) {
        QObject::connect(&notifier, &QSocketNotifier::activated, &notifier,
                         [this, action = std::move(action)] {
                             char told = 0;
                             if (::read(reading.get(), &told, 1) == 1) action();
                         });
        writingEnd = writing.get();
        handle(tellOfSignal);
    }
    ~TerminationSignals() override { handle(SIG_DFL); }

private:
    /// Leaves alone what the program was started to ignore, as by nohup.
    static void handle(void (*handler)(int)) {
        struct sigaction wanted {};
        wanted.sa_handler = handler;
        wanted.sa_flags = SA_RESTART;
        for (const int signal : terminating) {
            struct sigaction found {};
            const bool isIgnored =
                ::sigaction(signal, nullptr, &found) == 0 && found.sa_handler == SIG_IGN;
            if (!isIgnored) ::sigaction(signal, &wanted, nullptr);
        }
    }

    FileDescriptor reading;
    FileDescriptor writing;
    QSocketNotifier notifier;
};

}  // namespace

std::unique_ptr<MainLoop::Subscription> onTermination(MainLoop::Action action) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return {};
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return std::make_unique<TerminationSignals>(FileDescriptor(ends[0]), FileDescriptor(ends[1]),
                                                std::move(action));
}

}  // namespace fleetwise
