#include "live_bench.h"

#include "app/live_fleet.h"
#include "sources/paths.h"

#include <QCoreApplication>
#include <QProcess>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace fleetwise {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{10};
constexpr std::chrono::milliseconds pause{60};  ///< between events, longer than a burst lasts

/// Handles events until `isMet`; whether it was met in time.
template <typename Condition>
bool waitFor(Condition isMet) {
    const auto deadline = Clock::now() + patience;
    while (!isMet()) {
        if (Clock::now() > deadline) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    }
    return true;
}

void idleFor(Clock::duration time) {
    const auto end = Clock::now() + time;
    waitFor([&] { return Clock::now() >= end; });
}

/// A session whose agent runs.
std::string runningSession(const FleetMonitor& fleet) {
    for (const Session& session : fleet.sessions()) {
        if (session.pid && session.agent.isClaude()) return session.id;
    }
    return {};
}

void runHook(const std::string& hook, const char* event, const std::string& session) {
    const nlohmann::json payload{
        {"session_id", session}, {"hook_event_name", event}, {"cwd", "/"}, {"prompt", "go on"}};
    QProcess process;
    process.start(QString::fromStdString(hook), {QString::fromUtf8(event)});
    process.write(QByteArray::fromStdString(payload.dump()));
    process.closeWriteChannel();
    process.waitForFinished();
}

double rounded(double value) {
    return std::round(value * 10) / 10;
}

}  // namespace

int benchLive(const std::string& home, const std::string& hook, int events) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    Paths::setHome(home);
    ::setenv("HOME", home.c_str(), 1);
    InMemoryUserDefaults defaults;
    Settings settings(defaults);
    LiveFleet live(defaults, settings);
    FleetMonitor& fleet = live.fleet();
    fleet.start();
    if (!waitFor([&] { return fleet.hasCollected(); })) return 1;
    const std::string session = runningSession(fleet);
    if (session.empty()) {
        std::fputs("fleetwise-bench: no session runs in this home\n", stderr);
        return 1;
    }
    std::vector<double> milliseconds;
    for (int event = 0; event < events; ++event) {
        const bool isPrompt = event % 2 == 0;
        const SessionState expected = isPrompt ? SessionState::working : SessionState::done;
        idleFor(pause);
        const auto start = Clock::now();
        runHook(hook, isPrompt ? "UserPromptSubmit" : "Stop", session);
        const auto isShown = [&] {
            const Session* found = fleet.session(session);
            return found != nullptr && found->state == expected;
        };
        if (!waitFor(isShown)) {
            std::fprintf(stderr, "fleetwise-bench: event %d never showed\n", event);
            return 1;
        }
        milliseconds.push_back(
            std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    const auto at = [&](std::size_t percent) {
        return rounded(milliseconds[(milliseconds.size() - 1) * percent / 100]);
    };
    const nlohmann::ordered_json result{
        {"eventToListMs", {{"median", at(50)}, {"p95", at(95)}, {"max", at(100)}}},
        {"events", events},
        {"sessions", fleet.sessions().size()}};
    std::printf("%s\n", result.dump().c_str());
    return 0;
}

}  // namespace fleetwise
