#include "foundation/file_descriptor.h"
#include "platform/directory_watcher.h"

#include <QSocketNotifier>
#include <tl/expected.hpp>

#include <sys/inotify.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace fleetwise {

namespace {

constexpr Seconds burst{0.03};
constexpr Seconds retryInterval{60};

constexpr std::uint32_t leaving = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t coming = leaving | IN_CREATE | IN_MOVED_TO;
constexpr std::uint32_t everyChange = coming | IN_CLOSE_WRITE | IN_DELETE | IN_MOVED_FROM;
constexpr std::uint32_t goneEvents = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;

/// "/", "/a" and "/a/b" for "/a/b".
std::vector<std::string> pathChain(const std::string& directory) {
    std::vector<std::string> chain{"/"};
    for (std::size_t end = 0; end < directory.size();) {
        const std::size_t begin = end + 1;
        end = std::min(directory.find('/', begin), directory.size());
        if (end > begin) chain.push_back(directory.substr(0, end));
    }
    return chain;
}

std::string_view lastComponent(std::string_view path) {
    return path.substr(path.find_last_of('/') + 1);
}

bool meansMissing(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP;
}

enum class News { nothing, changed };

/// Watches one path: the folder itself for everything, the folders above it for being taken away,
/// and while it is missing the nearest of them for its coming.
class PathWatch {
public:
    explicit PathWatch(const std::string& directory) : chain(pathChain(directory)) {}

    /// −1 where the system gives none.
    int descriptor() const { return inotify.get(); }

    /// Why neither the folder nor, while it is missing, its nearest ancestor is watched, as errno;
    /// 0 where one of them is.
    int error() const { return lastError; }

    /// Looks at the path anew and watches what is there now. Tells whether the folder came, went
    /// or is another than before.
    News renew();

    /// Takes what the system has to tell, and looks at the path anew where that is needed.
    News read();

private:
    struct Findings {
        bool entriesChanged = false;
        bool pathMoved = false;  ///< a folder of the path may have come or gone
    };
    enum class Descent { done, overtaken };

    tl::expected<int, int> add(const std::string& path, std::uint32_t mask);
    Descent descend();
    Descent await(std::size_t missing);
    void judgeAll(std::string_view events, Findings& findings) const;
    void judge(const ::inotify_event& event, std::string_view name, Findings& findings) const;

    std::vector<std::string> chain;
    FileDescriptor inotify;
    std::set<int> watches;
    int target = -1;     ///< the folder's own watch
    int awaitedIn = -1;  ///< the watch in which `awaitedName` has to appear
    std::string_view awaitedName;
    int lastError = 0;
};

/// The number of the watch, or the error.
tl::expected<int, int> PathWatch::add(const std::string& path, std::uint32_t mask) {
    const int watch = ::inotify_add_watch(inotify.get(), path.c_str(), mask);
    if (watch < 0) return tl::unexpected(errno);
    watches.insert(watch);
    return watch;
}

News PathWatch::renew() {
    if (!inotify) inotify = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    lastError = inotify ? 0 : errno;
    if (!inotify) return News::nothing;
    const int before = target;
    const std::set<int> old = std::exchange(watches, {});
    // Whoever keeps overtaking us is left to the next try.
    lastError = EAGAIN;
    for (int round = 0; round < 16 && descend() == Descent::overtaken; ++round) {
    }
    for (const int watch : old) {
        if (!watches.contains(watch)) ::inotify_rm_watch(inotify.get(), watch);
    }
    return target == before ? News::nothing : News::changed;
}

/// From the root downwards: a folder that is replaced after it was passed tells of it. One that
/// may not be read is passed over.
PathWatch::Descent PathWatch::descend() {
    target = awaitedIn = -1;
    for (std::size_t index = 0; index < chain.size(); ++index) {
        const bool isTarget = index + 1 == chain.size();
        const auto watch = add(chain[index], isTarget ? everyChange : leaving);
        if (!watch && meansMissing(watch.error())) return await(index);
        lastError = watch ? 0 : watch.error();
        if (watch && isTarget) target = *watch;
        if (!watch && lastError != EACCES) break;
    }
    return Descent::done;
}

/// Has the folder above the missing one tell of its coming. The missing one may have come
/// meanwhile, or the one above may have gone.
PathWatch::Descent PathWatch::await(std::size_t missing) {
    lastError = ENOENT;
    if (missing == 0) return Descent::done;
    const auto above = add(chain[missing - 1], coming);
    if (!above && meansMissing(above.error())) return Descent::overtaken;
    lastError = above ? 0 : above.error();
    if (!above) return Descent::done;
    if (add(chain[missing], leaving)) return Descent::overtaken;
    awaitedIn = *above;
    awaitedName = lastComponent(chain[missing]);
    return Descent::done;
}

News PathWatch::read() {
    Findings findings;
    std::array<char, 32'768> buffer;
    // Bounded for the sake of the main thread; what is left is told at once.
    for (int round = 0; round < 32; ++round) {
        const ssize_t count = ::read(inotify.get(), buffer.data(), buffer.size());
        if (count <= 0) break;
        judgeAll({buffer.data(), static_cast<std::size_t>(count)}, findings);
    }
    const News news = findings.pathMoved ? renew() : News::nothing;
    return findings.entriesChanged ? News::changed : news;
}

void PathWatch::judgeAll(std::string_view events, Findings& findings) const {
    while (events.size() >= sizeof(::inotify_event)) {
        ::inotify_event event{};
        std::memcpy(&event, events.data(), sizeof event);
        events.remove_prefix(sizeof event);
        const std::string_view padded = events.substr(0, event.len);
        judge(event, padded.substr(0, padded.find('\0')), findings);
        events.remove_prefix(padded.size());
    }
}

void PathWatch::judge(const ::inotify_event& event, std::string_view name,
                      Findings& findings) const {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
        findings = {.entriesChanged = true, .pathMoved = true};
    } else if (watches.contains(event.wd) && (event.mask & goneEvents) != 0) {
        findings.pathMoved = true;
    } else {
        findings.entriesChanged |= event.wd == target;
        findings.pathMoved |= event.wd == awaitedIn && name == awaitedName;
    }
}

class DirectoryWatcher final : public MainLoop::Subscription {
public:
    DirectoryWatcher(MainLoop& givenLoop, const std::string& directory,
                     MainLoop::Action givenChanged)
        : loop(givenLoop), changed(std::move(givenChanged)), path(directory) {
        path.renew();
        listen();
    }

private:
    /// Waits for the system's events, or for its giving more of them than before.
    void listen() {
        if (!notifier && path.descriptor() >= 0) {
            notifier =
                std::make_unique<QSocketNotifier>(path.descriptor(), QSocketNotifier::Type::Read);
            QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                             [this] { beginBurst(); });
        }
        if (path.error() == 0) {
            retry.reset();
        } else if (!retry) {
            retry = loop.every(retryInterval, [this] { tryAgain(); });
        }
    }

    /// The events wait in the system meanwhile, so that a burst wakes us twice and no more.
    void beginBurst() {
        notifier->setEnabled(false);
        pending = loop.after(burst, [this] { endBurst(); });
    }

    void endBurst() {
        const News news = path.read();
        notifier->setEnabled(true);
        listen();
        if (news == News::changed) tell();
    }

    void tryAgain() {
        const News news = path.renew();
        listen();
        if (news == News::changed || path.error() == 0) tell();
    }

    /// Comes last wherever it is called, since the action may end this.
    void tell() {
        const MainLoop::Action action = changed;
        action();
    }

    MainLoop& loop;
    MainLoop::Action changed;
    PathWatch path;
    std::unique_ptr<QSocketNotifier> notifier;
    std::unique_ptr<MainLoop::Subscription> pending;
    std::unique_ptr<MainLoop::Subscription> retry;
};

}  // namespace

std::unique_ptr<MainLoop::Subscription> startDirectoryWatcher(MainLoop& loop,
                                                              const std::string& directory,
                                                              MainLoop::Action changed) {
    return std::make_unique<DirectoryWatcher>(loop, directory, std::move(changed));
}

std::optional<WatchProblem> watchProblem(const std::string& directory) {
    PathWatch watch(directory);
    watch.renew();
    switch (watch.error()) {
        case 0:
            return {};
        case EMFILE:
        case ENFILE:
        case ENOSPC:
        case ENOMEM:
            return WatchProblem::limitReached;
        default:
            return WatchProblem::other;
    }
}

}  // namespace fleetwise
