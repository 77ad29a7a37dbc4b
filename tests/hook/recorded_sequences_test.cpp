// Every recorded sequence of events, and after each event what a user should see. The expectations
// stand in tests/data/hook-events/expected.txt: a title for each sequence, then a line for each of
// its events.

#include "foundation/json.h"
#include "hook_replay.h"
#include "support/temporary_directory.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>

namespace fleetwise::testing {
namespace {

std::string replayed(const std::string& path) {
    HookReplay replay;
    std::string outcome;
    std::istringstream lines(contentsOf(path));
    for (std::string line; std::getline(lines, line);) {
        const Json recorded = Json::parse(line);
        const std::string event = recorded.at("event");
        const Json& payload = recorded.at("payload");
        replay.apply(event, payload.dump(), recorded.at("at"));
        outcome += fmt::format("{}: {}\n", event, replay.describe(payload.at("session_id")));
    }
    return outcome;
}

TEST(RecordedSequences, showWhatTheUserShouldSee) {
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(dataPath("hook-events"))) {
        if (entry.path().extension() == ".jsonl") files.insert(entry.path());
    }
    ASSERT_GT(files.size(), 60U);
    std::string outcome;
    for (const auto& file : files)
        outcome += fmt::format("== {}\n{}", file.stem().string(), replayed(file.string()));
    EXPECT_EQ(outcome, contentsOf(dataPath("hook-events/expected.txt")));
}

}  // namespace
}  // namespace fleetwise::testing
