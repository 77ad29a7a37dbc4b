#include "sources/settings_document.h"

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

std::string nested(std::size_t levels) {
    return "{\"a\":" + std::string(levels - 1, '[') + std::string(levels - 1, ']') + "}";
}

TEST(SettingsDocument, isPrintedWithEveryValueAsItWas) {
    const std::string text = R"({
  "": [],
  "empty": {},
  "list": [
    null,
    true,
    false,
    "ü/\"\\\n\u0000",
    {
      "b": [
        []
      ]
    }
  ],
  "numbers": [
    0,
    -0,
    1.10,
    1e2,
    -1E+400,
    1e-9999,
    0.1000000000000000055511151231257827,
    12345678901234567890123
  ]
}
)";
    const auto document = parseSettings(text);
    ASSERT_TRUE(document);
    EXPECT_EQ(printSettings(*document), text);
}

TEST(SettingsDocument, acceptsWhatTheAgentDoes) {
    const struct {
        const char* name;
        std::string text;
        const char* value;  ///< of the member "a"
    } rows[] = {
        {"byte order mark", "\xEF\xBB\xBF{\"a\":\"x\"}", "x"},
        {"half a surrogate pair", R"({"a":"\ud83dx"})", "\xEF\xBF\xBDx"},
        {"not UTF-8", "{\"a\":\"\xff\"}", "\xEF\xBF\xBD"},
        {"escapes", R"({"\u0061":"\ud83d\ude00\/"})", "😀/"},
        {"the same name twice", R"({"a":{"b":1},"a":"x"})", "x"},
        {"white space", "\r\n\t {\t\"a\"\n:\r\"x\" } \n", "x"},
    };
    for (const auto& row : rows) {
        const auto document = parseSettings(row.text);
        ASSERT_TRUE(document) << row.name;
        EXPECT_EQ(member<std::string>(*document, "a"), row.value) << row.name;
    }
    EXPECT_TRUE(parseSettings(nested(1000)));
}

TEST(SettingsDocument, refusesAnythingElse) {
    for (const char* value : {"01",      "1.",         ".5",     "+1",  "-",     "1e",    "0x1",
                              "1 2",     "1\f",        "NaN",    "nul", "nullx", "truex", "'a'",
                              "\"a",     "\"\\x\"",    "\"\t\"", "[1",  "[1}",   "[1,]",  "[,1]",
                              "{\"b\"}", "{\"b\":1,}", "{b:1}",  "1,",  "1}",    "1]",    ""}) {
        EXPECT_FALSE(parseSettings("{\"a\":" + std::string(value) + "}")) << value;
    }
    for (const char* text :
         {"", " ", "null", "7", "\"a\"", "[{}]", "{", "{}{}", "{} x", "\xff{}"}) {
        EXPECT_FALSE(parseSettings(text)) << text;
    }
    EXPECT_FALSE(parseSettings(nested(1001)));
    EXPECT_FALSE(parseSettings("{\"a\":" + std::string(1'000'000, '[')));
}

}  // namespace
}  // namespace fleetwise::testing
