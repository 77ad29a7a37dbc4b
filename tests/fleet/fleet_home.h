#pragma once

#include "fleet/fleet_snapshot.h"
#include "foundation/json.h"
#include "support/fake_process_table.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <string>

namespace fleetwise::testing {

/// A home folder with agent files of a test's making, a fixed present, and the passes over it.
class FleetHome {
public:
    const Date now = dateFromSeconds(1'795'226'700);

    /// A running process and its entry in the agent's registry; `more` adds to or replaces keys.
    void runs(const std::string& id, std::int32_t pid, const Json& more = Json::object()) {
        processes.processes[pid] = {.parent = 1, .start = 100};
        Json entry{{"pid", pid}, {"sessionId", id}, {"cwd", project}, {"entrypoint", "cli"}};
        entry.update(more);
        home.write("sessions/" + std::to_string(pid) + ".json", entry.dump());
    }

    /// The hook's record of an event `age` seconds ago.
    void records(const std::string& id, const std::string& state, double age,
                 const Json& more = Json::object()) {
        const double ts = secondsSince1970(now) - age;
        Json record{{"session_id", id}, {"state", state}, {"ts", ts}, {"event_ts", ts}};
        record.update(more);
        home.write("status/" + id + ".json", record.dump());
    }

    /// A transcript last written `age` seconds ago; returns its path.
    std::string writesTranscript(const std::string& id, double age,
                                 const std::string& lines = prompt("Hello")) {
        const std::string path = home.write("projects/-srv-demo/" + id + ".jsonl", lines);
        setModificationDate(path, now - Seconds(age));
        return path;
    }

    /// The desktop app's metadata of a session.
    void describesInDesktop(const std::string& id, Json metadata) {
        metadata["cliSessionId"] = id;
        home.write("desktop/account/organisation/local_" + id + ".json", metadata.dump());
    }

    /// A Codex rollout of events (type and payload), one each second and the last `age` seconds
    /// ago, after its meta line; returns its file name.
    std::string writesRollout(const std::string& id, double age,
                              const std::vector<std::pair<std::string, Json>>& events,
                              const Json& meta = Json::object()) {
        double at = secondsSince1970(now) - age - static_cast<double>(events.size());
        std::string lines;
        const auto add = [&](const char* type, const Json& payload) {
            const std::string time = internetDate(dateFromSeconds(at));
            lines += Json{{"timestamp", time}, {"type", type}, {"payload", payload}}.dump() + "\n";
            at += 1;
        };
        Json head{{"id", id}, {"cwd", project}, {"originator", "codex-tui"}, {"source", "vscode"}};
        head.update(meta);
        add("session_meta", head);
        for (const auto& [type, payload] : events) {
            Json event = payload;
            event["type"] = type;
            add("event_msg", event);
        }
        const std::string name = "rollout-2026-11-21T02-00-00-" + id + ".jsonl";
        setModificationDate(home.write("codex/sessions/2026/11/21/" + name, lines),
                            now - Seconds(age));
        return name;
    }

    static std::string prompt(const std::string& text) {
        return Json{{"type", "user"},
                    {"cwd", "/srv/demo"},
                    {"origin", {{"kind", "human"}}},
                    {"message", {{"role", "user"}, {"content", text}}}}
                   .dump() +
               "\n";
    }

    static std::string reply(const std::string& text, int outputTokens) {
        return Json{{"type", "assistant"},
                    {"cwd", "/srv/demo"},
                    {"timestamp", "2026-11-21T02:04:00.000Z"},
                    {"message",
                     {{"role", "assistant"},
                      {"model", "claude-opus-5-5"},
                      {"content", {{{"type", "text"}, {"text", text}}}},
                      {"usage", {{"input_tokens", 10}, {"output_tokens", outputTokens}}}}}}
                   .dump() +
               "\n";
    }

    FleetSnapshot::Sources sources() {
        return {.statusDirectory = home.at("status"),
                .sessionsDirectory = home.at("sessions"),
                .projectsDirectory = home.at("projects"),
                .desktopDirectory = home.at("desktop"),
                .codexDirectory = home.at("codex"),
                .userId = 0,
                .processes = processes,
                .processTree = processTree,
                .transcripts = transcripts,
                .tasks = tasks,
                .backgroundTasks = backgroundTasks,
                .git = git,
                .desktop = desktop,
                .rollouts = rollouts,
                .codexProcesses = codexProcesses};
    }

    FleetSnapshot::Collection collect() {
        return FleetSnapshot::collect(input, sources(), shared, now);
    }

    TemporaryDirectory home;
    std::string project = home.makeDirectory("work/demo");
    FakeProcessTable processes;
    FleetSnapshot::Input input{.dormantMaxAge = Seconds(86'400),
                               .dismissed = {},
                               .keepRegardlessOfAge = {},
                               .doneGracePeriod = Seconds(1800)};
    FleetSnapshot::Shared shared;

private:
    ProcessTree processTree{processes, {}};
    TranscriptReader transcripts{home.at("projects")};
    TaskListStore tasks{home.at("tasks")};
    BackgroundTaskStore backgroundTasks;
    GitStore git;
    DesktopMetadataStore desktop;
    CodexRollouts rollouts;
    CodexProcesses codexProcesses{processes};
};

/// The session with this id; fails the test where it is not listed exactly once.
inline Session only(const FleetSnapshot::Collection& collection, const std::string& id) {
    std::vector<Session> found;
    for (const auto& session : collection.sessions) {
        if (session.id == id) found.push_back(session);
    }
    EXPECT_EQ(found.size(), 1U) << id;
    return found.empty() ? Session() : found.front();
}

/// The ids of the listed sessions in the list's order.
inline std::vector<std::string> ids(const FleetSnapshot::Collection& collection) {
    std::vector<std::string> listed;
    for (const auto& session : collection.sessions)
        listed.push_back(session.id);
    return listed;
}

}  // namespace fleetwise::testing
