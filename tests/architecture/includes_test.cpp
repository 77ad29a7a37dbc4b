// Holds the source tree to its layers: cmake/layers.txt says which folder may include which, and
// no files may include each other in a circle.

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace fleetwise::testing {
namespace {

using Graph = std::map<std::string, std::set<std::string>>;

/// Every node that can be reached from `start`, without `start` itself unless a circle leads back.
std::set<std::string> reachable(const Graph& graph, const std::string& start) {
    std::set<std::string> seen;
    std::vector<std::string> open{start};
    while (!open.empty()) {
        const auto node = graph.find(open.back());
        open.pop_back();
        if (node == graph.end()) continue;
        for (const auto& next : node->second) {
            if (seen.insert(next).second) open.push_back(next);
        }
    }
    return seen;
}

Graph allowedFolders() {
    Graph allowed;
    std::istringstream table(contentsOf(sourceDirectory() + "/cmake/layers.txt"));
    for (std::string row; std::getline(table, row);) {
        const auto colon = row.find(':');
        if (row.starts_with('#') || colon == std::string::npos) continue;
        std::istringstream names(row.substr(colon + 1));
        auto& folders = allowed[row.substr(0, colon)];
        for (std::string name; names >> name;)
            folders.insert(name);
    }
    return allowed;
}

std::string folderOf(const std::string& file) {
    return file.substr(0, file.find('/'));
}

/// File to the project's files it includes; both as "folder/file.h".
Graph includedFiles() {
    Graph included;
    const std::regex pattern(R"re(^\s*#\s*include\s*"([^"]+)")re");
    const std::filesystem::path source = sourceDirectory() + "/src";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(source)) {
        const auto extension = entry.path().extension();
        if (extension != ".h" && extension != ".cpp") continue;
        auto& targets = included[std::filesystem::relative(entry.path(), source).string()];
        std::ifstream stream(entry.path());
        for (std::string line; std::getline(stream, line);) {
            std::smatch match;
            if (std::regex_search(line, match, pattern)) targets.insert(match[1]);
        }
    }
    return included;
}

TEST(Includes, stayWithinTheAllowedLayers) {
    const Graph allowed = allowedFolders();
    const Graph included = includedFiles();
    ASSERT_GT(included.size(), 10U);
    for (const auto& [file, targets] : included) {
        const std::string folder = folderOf(file);
        ASSERT_TRUE(allowed.contains(folder)) << folder << " is missing in cmake/layers.txt";
        auto folders = reachable(allowed, folder);
        folders.insert(folder);
        for (const auto& target : targets) {
            EXPECT_TRUE(folders.contains(folderOf(target))) << file << " includes " << target;
        }
    }
}

TEST(Includes, formNoCircles) {
    const Graph allowed = allowedFolders();
    for (const auto& [folder, below] : allowed) {
        EXPECT_FALSE(reachable(allowed, folder).contains(folder)) << folder;
    }
    const Graph included = includedFiles();
    for (const auto& [file, targets] : included) {
        EXPECT_FALSE(reachable(included, file).contains(file)) << file;
    }
}

TEST(Includes, formNoCirclesOfTheInterfacesRooms) {
    const auto roomOf = [](const std::string& file) { return file.substr(0, file.rfind('/')); };
    Graph rooms;
    for (const auto& [file, targets] : includedFiles()) {
        if (folderOf(file) != "ui") continue;
        for (const std::string& target : targets) {
            if (roomOf(target) != roomOf(file)) rooms[roomOf(file)].insert(roomOf(target));
        }
    }
    ASSERT_GT(rooms.size(), 3U);
    for (const auto& [room, below] : rooms)
        EXPECT_FALSE(reachable(rooms, room).contains(room)) << room;
}

TEST(Includes, keepTheInterfaceToolkitAtTheEdge) {
    const std::regex toolkit(R"(^\s*#\s*include\s*<Q[A-Z])");
    const std::set<std::string> mayUse{"platform", "ui", "app"};
    for (const auto& [file, targets] : includedFiles()) {
        if (mayUse.contains(folderOf(file))) continue;
        std::istringstream lines(contentsOf(sourceDirectory() + "/src/" + file));
        for (std::string line; std::getline(lines, line);) {
            EXPECT_FALSE(std::regex_search(line, toolkit)) << file << ": " << line;
        }
    }
}

}  // namespace
}  // namespace fleetwise::testing
