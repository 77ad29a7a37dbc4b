// From the agent's events to the report, with nothing in between replaced: the real program
// installs the real hook, and the commands it wrote are run as the agent runs them.

#include "foundation/json.h"
#include "program_run.h"

#include <gmock/gmock.h>

#include <sstream>

namespace fleetwise::testing {
namespace {

using ::testing::HasSubstr;

/// Passes an event to every command that the settings list for it.
void runHooks(const TemporaryDirectory& home, const Json& settings, const Json& recorded) {
    const TemporaryDirectory input;
    const std::string payload = input.write("payload", recorded.at("payload").dump() + "\n");
    for (const Json& group : settings.at("hooks").at(recorded.at("event"))) {
        for (const Json& hook : group.at("hooks")) {
            const std::string script =
                input.write("command", hook.at("command").get<std::string>());
            const std::string command = "env -i HOME='" + home.path() + "' sh -c \"$(cat '" +
                                        script + "')\" <'" + payload + "'";
            EXPECT_EQ(std::system(command.c_str()), 0) << hook;
        }
    }
}

/// Runs the hooks of a recorded sequence up to its first event `last`; returns the session's id.
std::string replay(const TemporaryDirectory& home, const Json& settings, const char* sequence,
                   std::string_view last) {
    std::istringstream lines(
        contentsOf(dataPath(std::string("hook-events/") + sequence + ".jsonl")));
    for (std::string line; std::getline(lines, line);) {
        const Json recorded = Json::parse(line);
        runHooks(home, settings, recorded);
        if (recorded.at("event") == last) return recorded.at("payload").at("session_id");
    }
    ADD_FAILURE() << sequence << " has no " << last;
    return {};
}

/// The block of a session in the report.
std::string blockOf(const std::string& report, const std::string& session) {
    const auto begin = report.find("    ID:          " + session);
    if (begin == std::string::npos) return {};
    return report.substr(begin, report.find("\n\n", begin) - begin);
}

TEST(HooksEndToEnd, makeTheReportShowWhatSessionsDo) {
    const TemporaryDirectory home;
    const ProgramRun installed = run(home, "--install-hooks");
    ASSERT_EQ(installed.exitStatus, 0) << installed.errors;
    const Json settings = Json::parse(contentsOf(home.at(".claude/settings.json")));

    const struct {
        const char* sequence;
        const char* last;
        const char* state;
        const char* detail;
    } rows[] = {
        {"i-perm", "PermissionRequest", "waiting", "Bash: Create a marker file"},
        {"i-ask", "PermissionRequest", "decision", "Which colour should the lab use?"},
        {"i-plain", "Stop", "done", "Plain mock answer."},
        {"i-agents2", "Stop", "waitingForSubagents", "Wartet auf Unteragenten: 2"},
        {"i-agentsbg", "SubagentStop", "waitingForSubagents", "Wartet auf Unteragenten: 1"},
        {"p-agents2", "SubagentStop", "waitingForSubagents", "Wartet auf Unteragenten: 1"},
        {"i-esc-tool", "PreToolUse", "working", "Work a while"},
        {"i-err401", "StopFailure", "failed", "Invalid API key"},
        {"i-compact", "PreCompact", "compacting", "Verdichtet den Gesprächsverlauf"},
        {"codex-x-hooks", "PreToolUse", "working", "echo codex-lab && ls"},
    };
    std::vector<std::string> sessions;
    for (const auto& row : rows)
        sessions.push_back(replay(home, settings, row.sequence, row.last));
    const std::string ended = replay(home, settings, "p-plain", "SessionEnd");

    const ProgramRun report = run(home, "--dump");
    EXPECT_THAT(report.output, HasSubstr("\nHooks:     installiert\n"));
    EXPECT_THAT(report.output, HasSubstr("\nHook-Kopie: aktuell\n"));
    for (std::size_t index = 0; index < std::size(rows); ++index) {
        const std::string block = blockOf(report.output, sessions[index]);
        EXPECT_THAT(block, HasSubstr(std::string("(") + rows[index].state + ")"))
            << rows[index].sequence;
        EXPECT_THAT(block, HasSubstr(rows[index].detail)) << rows[index].sequence;
    }
    EXPECT_EQ(blockOf(report.output, ended), "");
}

}  // namespace
}  // namespace fleetwise::testing
