#include "app/program_run.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <filesystem>
#include <regex>
#include <set>

namespace fleetwise::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;

/// The raw states in the program's report on this home.
std::set<std::string> statesIn(const std::string& report) {
    const std::regex pattern(R"(Zustand: .*\((\w+)\))");
    std::set<std::string> states;
    for (std::sregex_iterator match(report.begin(), report.end(), pattern), end; match != end;
         ++match)
        states.insert((*match)[1]);
    return states;
}

/// What the demo prints and leaves behind in the home after `options`.
ProgramRun demo(const TemporaryDirectory& home, const std::string& options) {
    return run(home, "--no-app --rate 0 --pid " + std::to_string(::getpid()) + " " + options,
               FLEETWISE_DEMO);
}

TEST(Demo, leadsTheFleetThroughTheStates) {
    std::set<std::string> states;
    for (const int events : {20, 40, 80, 200}) {
        const TemporaryDirectory home;
        const ProgramRun played =
            demo(home, "--events " + std::to_string(events) + " '" + home.path() + "'");
        ASSERT_EQ(played.exitStatus, 0) << played.errors;
        const std::string report = run(home, "--dump").output;
        EXPECT_THAT(report, Not(HasSubstr("übersprungen"))) << "files that cannot be read";
        EXPECT_THAT(report, HasSubstr("Repair the date parser's tests"));
        states.merge(statesIn(report));
    }
    EXPECT_THAT(states, IsSupersetOf({"working", "waiting", "decision", "waitingForSubagents",
                                      "failed", "done", "scheduled", "compacting"}));
}

TEST(Demo, leavesNothingBehindAndNoOccupiedFolderHarmed) {
    const TemporaryDirectory home;
    const ProgramRun played = demo(home, "--events 3");
    ASSERT_EQ(played.exitStatus, 0) << played.errors;
    const std::string folder = played.output.substr(0, played.output.find('\n'));
    EXPECT_THAT(folder, HasSubstr("fleetwise-demo-"));
    EXPECT_FALSE(std::filesystem::exists(folder));

    const std::string own = home.write(".claude/settings.json", "{}");
    EXPECT_EQ(demo(home, "--events 3 '" + home.path() + "'").exitStatus, 1);
    EXPECT_EQ(contentsOf(own), "{}");
    EXPECT_FALSE(std::filesystem::exists(home.at(".claude/sessions")));
}

}  // namespace
}  // namespace fleetwise::testing
