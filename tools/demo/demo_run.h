#pragma once

#include "demo/demo_home.h"
#include "demo/options.h"
#include "demo/player.h"
#include "demo/programs.h"
#include "foundation/date.h"
#include "sources/hook_installer.h"

#include <tl/expected.hpp>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace fleetwise::demo {

/// Plays events into a home while the application runs on it.
class DemoRun {
public:
    /// `options` and `home` outlive this. `programsFolder` holds the application, the hook and the
    /// program that stands in for Codex.
    DemoRun(const Options& options, const DemoHome& home, const std::string& programsFolder);

    /// Until the options' end, until the application ends or `isInterrupted` says so. The error is
    /// a message.
    tl::expected<void, std::string> run(const std::function<bool()>& isInterrupted);

private:
    using Clock = std::chrono::steady_clock;

    /// In the home's own settings, as a user of it would have done.
    tl::expected<void, std::string> installHook() const;
    tl::expected<void, std::string> startApplication();
    tl::expected<void, std::string> play(const std::function<bool()>& hasEnded);
    tl::expected<void, std::string> outcome();

    const Options& options;
    const DemoHome& home;
    std::string application;
    std::string hook;
    std::string standIn;  ///< the program that plays Codex
    Player player;
    std::optional<RunningProgram> running;
};

}  // namespace fleetwise::demo
