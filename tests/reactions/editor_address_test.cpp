#include "reactions/editor_address.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

TEST(EditorAddress, namesTheFolder) {
    const struct {
        const char* host;
        const char* path;
        std::optional<std::string> expected;
    } rows[] = {
        {"code", "/srv/a-b_c.d~/x", "vscode://file/srv/a-b_c.d~/x/"},
        {"code-insiders", "/srv//", "vscode-insiders://file/srv/"},
        {"com.vscodium.codium", "/", "vscodium://file/"},
        {"cursor", "/a b", "cursor://file/a%20b/"},
        {"windsurf", "/Übung", "windsurf://file/%C3%9Cbung/"},
        {"dev.zed.Zed", "/a%20?b#c&d:e\n\xff", "zed://file/a%2520%3Fb%23c%26d%3Ae%0A%FF/"},
        {"code", "srv", {}},
        {"code", "", {}},
        {"org.kde.konsole", "/srv", {}},
        {"", "/srv", {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(EditorAddress::of(row.host, row.path), row.expected) << row.path;
    }
}

}  // namespace
}  // namespace fleetwise::testing
