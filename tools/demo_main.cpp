// fleetwise-demo: shows the application on a fleet of its own making that is at work.

#include "demo/demo_home.h"
#include "demo/demo_run.h"
#include "demo/options.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace {

using namespace fleetwise::demo;

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

}  // namespace

int main(int argumentCount, char** arguments) {
    const auto options = readOptions(argumentCount, arguments);
    if (!options) {
        fmt::print(stderr, "{}", usage);
        return 2;
    }
    std::error_code fault;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", fault);
    if (fault) return fail("cannot find the programs beside this one");
    handleSignals();
    const auto home = DemoHome::make({.folder = options->home,
                                      .isKept = options->isKept,
                                      .seed = options->seed,
                                      .pid = options->pid});
    if (!home) return fail(home.error());
    fmt::print("{}\n", home->path());
    std::fflush(stdout);
    DemoRun demo(*options, *home, program.parent_path().string());
    const auto done = demo.run([] { return isInterrupted != 0; });
    return done ? 0 : fail(done.error());
}
