// Holds what tells of the program's switches to the switches that it has.

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace fleetwise::testing {
namespace {

/// The first group of each match.
std::set<std::string> found(const std::string& file, const char* pattern) {
    const std::regex regex(pattern);
    const std::string text = contentsOf(sourceDirectory() + '/' + file);
    std::set<std::string> names;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
        names.insert((*match)[1]);
    return names;
}

TEST(Switches, areTheSameWhereverTheyAreTold) {
    const auto switches = found("src/app/command_line.cpp", R"re(\{"--([a-z-]+)", Job::)re");
    ASSERT_GT(switches.size(), 5U);
    struct Place {
        const char* file;
        const char* pattern;
    };
    for (const auto& [file, pattern] : {
             Place{"packaging/completions/fleetwise.bash", R"re([\s'(]--([a-z]+(-[a-z]+)*))re"},
             Place{"packaging/completions/fleetwise.zsh", R"re([\s']--([a-z]+(-[a-z]+)*))re"},
             Place{"packaging/completions/fleetwise.fish", R"re( -l ([a-z-]+))re"},
             Place{"docs/man/fleetwise.1", R"re(\.It Fl -([a-z-]+))re"},
             Place{"docs/man/fleetwise.1", R"re(Fl -([a-z-]+))re"},
             Place{"README.md", R"re((?:`|\nfleetwise )--([a-z-]+))re"},
         }) {
        EXPECT_EQ(found(file, pattern), switches) << file;
    }
}

}  // namespace
}  // namespace fleetwise::testing
