// The application as a whole: the fleet that it watches, and how it starts and ends.

#include "app/live_fleet.h"
#include "foundation/json.h"
#include "program_run.h"
#include "sources/paths.h"
#include "ui/fleet/fleet_list_model.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

#include <unistd.h>

#include <chrono>
#include <filesystem>

namespace fleetwise::testing {
namespace {

/// Handles events until `isMet`; whether that came within ten seconds.
bool waitUntil(const std::function<bool()>& isMet) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!isMet()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    return true;
}

TEST(LiveFleet, showsEachEventOfTheHookInItsRow) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    const TemporaryDirectory home;
    const std::string usersHome = Paths::home();
    Paths::setHome(home.path());
    const Json entry{{"pid", ::getpid()}, {"sessionId", "s1"}, {"cwd", "/srv/shop"}};
    home.write(".claude/sessions/" + std::to_string(::getpid()) + ".json", entry.dump());
    InMemoryUserDefaults defaults;
    Settings settings(defaults);
    LiveFleet live(defaults, settings);
    FleetListModel model(live.fleet(), [&] { return live.fleet().groups(); });
    live.fleet().start();

    const struct {
        const char* event;
        Json payload;
        SessionState state;
        const char* detail;
    } rows[] = {
        {"SessionStart", {{"source", "startup"}}, SessionState::idle, ""},
        {"UserPromptSubmit", {{"prompt", "Go"}}, SessionState::working, ""},
        {"PermissionRequest",
         {{"tool_name", "Bash"}, {"tool_input", {{"description", "Run the tests"}}}},
         SessionState::waiting,
         "Bash: Run the tests"},
        {"Stop", {{"last_assistant_message", "All good."}}, SessionState::done, "All good."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.event);
        Json payload = row.payload;
        payload["session_id"] = "s1";
        payload["hook_event_name"] = row.event;
        payload["cwd"] = "/srv/shop";
        const std::string input = home.write("payload", payload.dump());
        const std::string command =
            "HOME='" + home.path() + "' " FLEETWISE_HOOK " " + row.event + " <'" + input + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
        EXPECT_TRUE(waitUntil([&] {
            const QModelIndex index = model.indexOf("s1");
            return index.isValid() && model.row(index).state == row.state &&
                   model.row(index).detail == row.detail;
        }));
    }
    Paths::setHome(usersHome);
}

TEST(Application, runsOnceAndEndsWhenTold) {
    const TemporaryDirectory home;
    home.makeDirectory("run");
    home.write("start",
               "export HOME='" + home.path() + "' XDG_RUNTIME_DIR='" + home.at("run") +
                   "' QT_QPA_PLATFORM=offscreen\n"
                   "'" FLEETWISE_PROGRAM
                   "' & first=$!\n"
                   "for try in $(seq 200); do ls \"$XDG_RUNTIME_DIR\"/fleetwise-* && break; "
                   "sleep 0.1; done >/dev/null 2>&1\n"
                   "'" FLEETWISE_PROGRAM
                   "' fleetwise://somewhere; echo second $?\n"
                   "kill -TERM $first; wait $first; echo first $?\n");
    const std::string command = "env -i PATH=\"$PATH\" sh '" + home.at("start") + "' >'" +
                                home.at("told") + "' 2>'" + home.at("errors") + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(contentsOf(home.at("told")), "second 0\nfirst 0\n");
    EXPECT_TRUE(std::filesystem::is_directory(home.at(".claude/fleetwise/status")));
    EXPECT_FALSE(std::filesystem::exists(home.at(".claude/settings.json"))) << "nobody agreed";
}

}  // namespace
}  // namespace fleetwise::testing
