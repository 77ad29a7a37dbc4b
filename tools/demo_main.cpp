// fleetwise-demo: shows the application on a fleet of its own making that is at work.

#include "demo/demo_home.h"
#include "demo/player.h"
#include "demo/programs.h"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace {

using namespace fleetwise::demo;
using Clock = std::chrono::steady_clock;
using fleetwise::Seconds;

constexpr std::string_view usage =
    "usage: fleetwise-demo [OPTION]... [HOME]\n"
    "Fills a home folder with agent sessions, lets them work and starts the application on them.\n"
    "Without HOME the folder is a temporary one that is removed at the end.\n"
    "  --rate R      events per second over all sessions; 0: as fast as possible (2)\n"
    "  --seconds N   end after this time (when the application ends)\n"
    "  --events N    end after this many events (when the application ends)\n"
    "  --pid P       process that running sessions claim (the demo)\n"
    "  --seed S      the same seed gives the same story (1)\n"
    "  --keep        keep the temporary folder\n"
    "  --no-app      only play, until it is interrupted\n";

struct Options {
    double rate = 2;
    double seconds = std::numeric_limits<double>::infinity();
    double events = std::numeric_limits<double>::infinity();
    double seed = 1;
    double pid = ::getpid();
    bool isKept = false;
    bool startsApplication = true;
    std::string home;
};

bool readNumber(std::string_view text, double& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && number >= 0 && number < 1e9;
}

std::optional<Options> readOptions(int count, char** arguments) {
    Options options;
    for (int index = 1; index < count; ++index) {
        const std::string_view argument = arguments[index];
        double* number = argument == "--rate"      ? &options.rate
                         : argument == "--seconds" ? &options.seconds
                         : argument == "--events"  ? &options.events
                         : argument == "--pid"     ? &options.pid
                         : argument == "--seed"    ? &options.seed
                                                   : nullptr;
        if (number != nullptr) {
            if (++index == count || !readNumber(arguments[index], *number)) return {};
        } else if (argument == "--keep") {
            options.isKept = true;
        } else if (argument == "--no-app") {
            options.startsApplication = false;
        } else if (argument.starts_with('-') || !options.home.empty()) {
            return {};
        } else {
            options.home = argument;
        }
    }
    return options;
}

volatile std::sig_atomic_t isInterrupted = 0;

void handleSignals() {
    struct ::sigaction action {};
    action.sa_handler = [](int) { isInterrupted = 1; };
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGHUP, &action, nullptr);
    ::signal(SIGPIPE, SIG_IGN);
}

int fail(const std::string& message) {
    fmt::print(stderr, "fleetwise-demo: {}\n", message);
    return 1;
}

class Demo {
public:
    Demo(const Options& givenOptions, const DemoHome& givenHome, const std::string& programsFolder)
        : options(givenOptions),
          home(givenHome),
          application(programsFolder + "/fleetwise"),
          player(home, programsFolder + "/fleetwise-hook", seedOf(options)) {}

    static std::uint64_t seedOf(const Options& options) {
        return static_cast<std::uint64_t>(options.seed);
    }

    int run() {
        if (options.startsApplication) {
            auto started = RunningProgram::start({application}, environmentIn(home.path()));
            if (!started)
                return fail(
                    fmt::format("cannot run {}: {}", application, started.error().message()));
            running.emplace(*std::move(started));
        }
        const auto start = Clock::now();
        for (double played = 0; played < options.events; ++played) {
            const double due = options.rate > 0 ? played / options.rate : 0;
            if (!waitUntil(start, Seconds(std::min(due, options.seconds)))) break;
            if (Clock::now() - start >= Seconds(options.seconds)) break;
            if (const auto done = player.playNext(); !done) return fail(done.error());
        }
        return exitStatus();
    }

private:
    bool hasEnded() { return isInterrupted != 0 || (running && running->ended()); }

    /// Whether to go on.
    bool waitUntil(Clock::time_point start, Seconds due) {
        constexpr Seconds slice{0.1};
        for (Seconds left = due - (Clock::now() - start); left > Seconds(0) && !hasEnded();) {
            std::this_thread::sleep_for(std::min(slice, left));
            left = due - (Clock::now() - start);
        }
        return !hasEnded();
    }

    int exitStatus() {
        if (!running || isInterrupted != 0) return 0;
        const auto status = running->ended();
        if (!status || *status == 0) return 0;
        const std::string hint =
            home.isRemovedAtEnd()
                ? "With --keep the home stays, and its report can be printed without a display:"
                : "Its report can be printed without a display:";
        return fail(fmt::format("the application ended with {}. {}\n  HOME={} {} --dump", *status,
                                hint, home.isRemovedAtEnd() ? "…" : home.path(), application));
    }

    const Options& options;
    const DemoHome& home;
    std::string application;
    Player player;
    std::optional<RunningProgram> running;
};

}  // namespace

int main(int argumentCount, char** arguments) {
    const auto options = readOptions(argumentCount, arguments);
    if (!options) {
        fmt::print(stderr, "{}", usage);
        return 2;
    }
    handleSignals();
    const auto home = DemoHome::make({.folder = options->home,
                                      .isKept = options->isKept,
                                      .seed = Demo::seedOf(*options),
                                      .pid = static_cast<std::int32_t>(options->pid)});
    if (!home) return fail(home.error());
    fmt::print("{}\n", home->path());
    std::fflush(stdout);
    std::error_code fault;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", fault);
    if (fault) return fail("cannot find the programs beside this one");
    return Demo(*options, *home, program.parent_path().string()).run();
}
