// What reactions cost in each pass: where nothing happened, and where 50 sessions ask at once.

#include "foundation/user_defaults.h"
#include "monitor/settings.h"
#include "reactions/action_runner.h"
#include "reactions/notifier.h"
#include "reactions/sound_player.h"
#include "reactions/stay_awake.h"
#include "reactions/webhook.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

namespace fleetwise {

namespace {

constexpr int sessionCount = 320;
constexpr int askingCount = 50;

struct Nobody final : NotificationCentre, ChildProcesses, HttpPoster, PowerAssertions {
    void requestAuthorization(Answer answered) override { answered(true); }
    void post(const Notification& /*notification*/) override {}
    void withdraw(const std::string& /*identifier*/) override {}
    tl::expected<void, std::string> start(const ChildCommand& /*command*/,
                                          Ended /*ended*/) override {
        return tl::unexpected(std::string("nobody"));
    }
    void post(const HttpPost& /*request*/, std::function<void(Result)> /*done*/) override {}
    void take(PowerAssertionType /*type*/, const std::string& /*reason*/,
              Taken /*taken*/) override {}
};

/// A fleet with reactions of every kind set.
class ReactingFleet {
public:
    ReactingFleet() {
        std::vector<StateAction> released;
        Json overrides;
        for (int index = 0; index < 10; ++index) {
            released.push_back(StateAction{
                .id = std::to_string(index),
                .state = SessionState::waiting,
                .command = "/bin/true",
                .confirmed = {}}.armed());
            overrides[fmt::format("s:{}", index)] = false;
        }
        defaults.set("stateActions", StateAction::encode(released));
        defaults.set("sessionNotifyOverrides", overrides);
        defaults.set("webhookURL", "http://127.0.0.1/");
        for (int index = 0; index < sessionCount; ++index) {
            Session session;
            session.id = std::to_string(index);
            session.cwd = "/srv/project";
            session.isLive = index < askingCount;
            session.state = session.isLive ? SessionState::working : SessionState::dormant;
            previous.emplace(session.id, session.state);
            sessions.push_back(std::move(session));
        }
    }

    void setState(SessionState state) {
        for (Session& session : sessions) {
            if (session.isLive) session.state = state;
        }
    }

    void pass() {
        now += Seconds(60);
        const ReactionRules rules = settings.reactionRules();
        const auto transitions = enteredStates(sessions, previous, now);
        const FleetChange change{sessions, previous, transitions, rules, now};
        for (FleetReaction* reaction :
             std::initializer_list<FleetReaction*>{&notifier, &sounds, &actions, &webhook, &awake})
            reaction->react(change);
        for (const Session& session : sessions)
            previous[session.id] = session.state;
    }

private:
    Date now = dateFromSeconds(1'795'226'700);
    InMemoryUserDefaults defaults;
    Settings settings{defaults};
    std::vector<Session> sessions;
    std::map<std::string, SessionState> previous;
    Nobody nobody;
    Notifier notifier{nobody, currentCalendar()};
    SoundPlayer sounds{nobody, [](const std::string&) { return std::nullopt; }, {}};
    ActionRunner actions{nobody, [this] { return now; }};
    Webhook webhook{nobody, "0", [this] { return now; }};
    StayAwake awake{nobody};
};

void reactToNothing(benchmark::State& state) {
    ReactingFleet fleet;
    for (auto _ : state)
        fleet.pass();
}
BENCHMARK(reactToNothing)->Unit(benchmark::kMicrosecond);

void reactToFiftyQuestions(benchmark::State& state) {
    ReactingFleet fleet;
    for (auto _ : state) {
        fleet.setState(SessionState::waiting);
        fleet.pass();
        fleet.setState(SessionState::working);
        fleet.pass();
    }
}
BENCHMARK(reactToFiftyQuestions)->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace fleetwise
