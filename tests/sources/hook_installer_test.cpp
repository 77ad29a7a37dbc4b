#include "sources/hook_installer.h"

#include "foundation/json.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

Json groupWith(const Json& command) {
    return {{"hooks", {{{"type", "command"}, {"command", command}}}}};
}

/// Settings with an entry of ours for every event, beside a foreign one.
Json installedSettings() {
    Json settings{{"model", "opus"}, {"hooks", Json::object()}};
    for (const std::string_view event : HookInstaller::events) {
        const std::string command = "'/x/fleetwise-hook' " + std::string(event) + " # fleetwise";
        settings["hooks"][std::string(event)] = {groupWith("notify-send done"), groupWith(command)};
    }
    return settings;
}

TEST(HookSettings, countAsInstalledOnlyWithEveryEvent) {
    const TemporaryDirectory folder;
    const std::string program = folder.write("fleetwise-hook", "program");
    const auto changed = [](const char* pointer, const Json& value) {
        Json settings = installedSettings();
        settings[Json::json_pointer(pointer)] = value;
        return settings.dump();
    };
    Json withoutLast = installedSettings();
    withoutLast["hooks"].erase("SessionEnd");
    const struct {
        const char* name;
        std::string settings;
        bool isInstalled;
    } rows[] = {
        {"all there", installedSettings().dump(), true},
        {"odd neighbours", changed("/hooks/Stop/0", Json::parse("[null,{\"hooks\":7},3]")), true},
        {"odd hooks", changed("/hooks/Stop/0/hooks", Json::parse("[null,3,{\"command\":4}]")),
         true},
        {"one event missing", withoutLast.dump(), false},
        {"one event without ours", changed("/hooks/Stop/1", groupWith("notify-send")), false},
        {"command is no text", changed("/hooks/Stop/1", groupWith(12)), false},
        {"event is no list", changed("/hooks/Stop", groupWith("x # fleetwise")), false},
        {"hooks is no object", changed("/hooks", Json::array()), false},
        {"no hooks", R"({"model":"opus"})", false},
        {"no JSON", "{", false},
    };
    for (const auto& row : rows) {
        const std::string settings = folder.write("settings.json", row.settings);
        EXPECT_EQ(HookInstaller::isInstalled(settings, program), row.isInstalled) << row.name;
    }
}

TEST(HookSettings, areReadWhereTheUserPutThem) {
    const TemporaryDirectory folder;
    const std::string program = folder.write("fleetwise-hook", "program");
    const std::string settings = folder.write("dotfiles/settings.json", installedSettings().dump());
    const struct {
        const char* name;
        std::string settings;
        std::string program;
        bool isInstalled;
    } rows[] = {
        {"link", folder.makeLink("link.json", settings), program, true},
        {"dangling link", folder.makeLink("dangling.json", folder.at("missing")), program, false},
        {"link to itself", folder.makeLink("loop.json", "loop.json"), program, false},
        {"FIFO", folder.makeFifo("fifo.json"), program, false},
        {"no program", settings, folder.at("missing"), false},
        {"folder for a program", settings, folder.makeDirectory("folder"), false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(HookInstaller::isInstalled(row.settings, row.program), row.isInstalled)
            << row.name;
    }
}

TEST(HookProgram, isCurrentWhereItIsTheBundledOne) {
    const TemporaryDirectory folder;
    const std::string bundled = folder.write("bundled", "version 2");
    const std::string missing = folder.at("missing");
    EXPECT_TRUE(HookInstaller::isCurrent(bundled, folder.write("same", "version 2")));
    EXPECT_FALSE(HookInstaller::isCurrent(bundled, folder.write("other", "version 1")));
    EXPECT_FALSE(HookInstaller::isCurrent(bundled, missing));
    EXPECT_FALSE(HookInstaller::isCurrent(missing, missing));
    EXPECT_TRUE(HookInstaller::isCurrent({}, missing));
}

}  // namespace
}  // namespace fleetwise::testing
