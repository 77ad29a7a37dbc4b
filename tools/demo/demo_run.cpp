#include "demo/demo_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <thread>

namespace fleetwise::demo {

namespace {

constexpr Seconds slice{0.1};  ///< how long an end may go unnoticed

/// Whether `due` came before the end.
template <typename Clock>
bool waitUntil(typename Clock::time_point start, Seconds due,
               const std::function<bool()>& hasEnded) {
    while (!hasEnded()) {
        const Seconds left = due - (Clock::now() - start);
        if (left <= Seconds(0)) return true;
        std::this_thread::sleep_for(std::min(slice, left));
    }
    return false;
}

}  // namespace

DemoRun::DemoRun(const Options& givenOptions, const DemoHome& givenHome,
                 const std::string& programsFolder)
    : options(givenOptions),
      home(givenHome),
      application(programsFolder + "/fleetwise"),
      hook(programsFolder + "/fleetwise-hook"),
      standIn(programsFolder + "/fleetwise-demo-agent"),
      player(home, hook, options.seed) {}

tl::expected<void, std::string> DemoRun::run(const std::function<bool()>& isInterrupted) {
    if (auto installed = installHook(); !installed) return installed;
    if (auto added = player.addCodex(standIn); !added) return added;
    if (options.startsApplication) {
        if (auto started = startApplication(); !started) return started;
    }
    const auto played =
        play([&] { return isInterrupted() || (running && running->ended().has_value()); });
    if (!played || isInterrupted()) return played;
    return outcome();
}

tl::expected<void, std::string> DemoRun::installHook() const {
    const std::string agentFolder = home.path() + "/.claude";
    const std::string stateFolder = agentFolder + "/fleetwise";
    const auto installed = HookInstaller::install({.settingsFile = agentFolder + "/settings.json",
                                                   .stateDir = stateFolder,
                                                   .statusDir = stateFolder + "/status",
                                                   .installedHook = stateFolder + "/fleetwise-hook",
                                                   .bundledHook = hook},
                                                  currentDate());
    if (!installed) return tl::unexpected(installErrorText(installed.error()));
    return {};
}

tl::expected<void, std::string> DemoRun::startApplication() {
    auto started = RunningProgram::start(
        {.command = {application}, .environment = environmentIn(home.path())});
    if (!started) {
        return tl::unexpected(
            fmt::format("cannot run {}: {}", application, started.error().message()));
    }
    running.emplace(*std::move(started));
    return {};
}

tl::expected<void, std::string> DemoRun::play(const std::function<bool()>& hasEnded) {
    const auto start = Clock::now();
    for (double played = 0; played < options.events; ++played) {
        const Seconds due(options.rate > 0 ? played / options.rate : 0);
        const Seconds end(options.seconds);
        if (!waitUntil<Clock>(start, std::min(due, end), hasEnded)) break;
        if (Clock::now() - start >= end) break;
        if (auto done = player.playNext(); !done) return tl::unexpected(done.error());
    }
    return {};
}

tl::expected<void, std::string> DemoRun::outcome() {
    const auto status = running ? running->ended() : std::nullopt;
    if (!status || *status == 0) return {};
    const std::string hint =
        home.isRemovedAtEnd()
            ? "With --keep the home stays, and its report can be printed without a display:"
            : "Its report can be printed without a display:";
    return tl::unexpected(fmt::format("the application ended with {}. {}\n  HOME={} {} --dump",
                                      *status, hint, home.isRemovedAtEnd() ? "…" : home.path(),
                                      application));
}

}  // namespace fleetwise::demo
