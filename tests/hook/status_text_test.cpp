#include "hook/status_text.h"

#include "hook/running_work.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <deque>
#include <vector>

namespace fleetwise::testing {
namespace {

TEST(StatusText, hasRoomForTheFullestRecord) {
    // A control character takes six bytes, more than any other.
    const std::string longest(10'000, '\x01');
    std::deque<std::string> ids;
    hook::StatusRecord record;
    for (auto* text :
         {&record.sessionId, &record.event, &record.agent, &record.tool, &record.activity,
          &record.message, &record.cwd, &record.permissionMode, &record.error}) {
        *text = longest;
    }
    for (int count = 0; count < 600; ++count) {
        const std::string& id =
            ids.emplace_back(longest.substr(0, 124) + fmt::format("{:04}", count));
        hook::HookEvent event{.toolName = "Monitor", .toolInput = {.command = longest}};
        event.toolResponse = {.backgroundTaskId = id, .taskId = id};
        hook::countSubagent(record, id);
        hook::countLaunches(record, event, 1795226700.123456);
        record.requests.add({longest, longest, longest, longest});
    }
    hook::countSubagent(record, longest);
    std::vector<char> space(hook::statusTextLimit);
    const std::string_view text = hook::writeStatusText(record, space);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(record.subagents.all().size(), 512U);
}

}  // namespace
}  // namespace fleetwise::testing
