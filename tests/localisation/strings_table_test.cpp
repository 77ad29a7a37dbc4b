#include "localisation/strings_table.h"

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

namespace fleetwise {
namespace {

TEST(StringsTable, readsWellFormedPairsAndSkipsTheOthers) {
    const struct {
        const char* name;
        std::string contents;
        StringsTable expected;
    } rows[] = {
        {"nothing", "", {}},
        {"two on a line", R"("a"="x"; "b" = "y";)", {{"a", "x"}, {"b", "y"}}},
        {"byte order mark", "\xEF\xBB\xBF\"a\" = \"x\";", {{"a", "x"}}},
        {"Windows line ends",
         "// c\r\n\"a\" =\r\n\"x\";\r\n\"b\" = \"y\";\r\n",
         {{"a", "x"}, {"b", "y"}}},
        {"quotes and semicolons in comments",
         "/* \"k\" = \"v\"; */ \"a\" = /* ; \" */ \"x\"; // \"b\" = \"y\";\n\"c\" = \"z\";",
         {{"a", "x"}, {"c", "z"}}},
        {"comment signs in texts", R"("a // b" = "/* x */;";)", {{"a // b", "/* x */;"}}},
        {"escapes",
         R"("\"a\"\\" = "1\n2\t\U00e4\U202F\U0041";)",
         {{"\"a\"\\", "1\n2\t\u00e4\u202FA"}}},
        {"the later of two", R"("a" = "x"; "a" = "y";)", {{"a", "y"}}},
        {"empty texts", R"("" = "";)", {{"", ""}}},
        {"unknown escape", R"("a" = "\q"; "b" = "y";)", {{"b", "y"}}},
        {"bad hexadecimal digits", R"("a" = "\U00g4"; "b" = "\U-123"; "c" = "\U12)", {}},
        {"half a surrogate pair", R"("a" = "\UD83D"; "b" = "y";)", {{"b", "y"}}},
        {"text without its end", "\"a\" = \"x;\n\"b\" = \"y\";", {{"b", "y"}}},
        {"key without its end", "\"a = \"x\";\n\"b\" = \"y\";", {{"b", "y"}}},
        {"semicolon missing", "\"a\" = \"x\"\n\"b\" = \"y\";\n\"c\" = \"z\";", {{"c", "z"}}},
        {"equals sign missing", R"("a" "x"; "b" = "y";)", {{"b", "y"}}},
        {"words without quotes", "a = x; \"b\" = \"y\";", {{"b", "y"}}},
        {"file ends early", R"("a" = "x"; "b" = "y")", {{"a", "x"}}},
        {"comment without its end", R"("a" = "x"; /* "b" = "y";)", {{"a", "x"}}},
        {"not UTF-8", "\"a\" = \"\xff\"; \"\xc3\" = \"x\"; \"b\" = \"y\";", {{"b", "y"}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(parseStringsTable(row.contents), row.expected);
    }
}

TEST(StringsTable, endsAtEveryCut) {
    const std::string whole = "/* c */ \"a\\\"\\U00e4\" = \"x\\n\"; // d\n\"b\" = \"y\";";
    const StringsTable complete = parseStringsTable(whole);
    ASSERT_EQ(complete.size(), 2U);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        for (const auto& [key, value] : parseStringsTable(whole.substr(0, length))) {
            EXPECT_EQ(complete.at(key), value) << "cut at " << length;
        }
    }
}

TEST(StringsTable, isLoadedFromTheFolderOfItsLanguage) {
    const testing::TemporaryDirectory directory;
    directory.write("en.lproj/Localizable.strings", R"("Arbeitet" = "Working";)");
    directory.makeFifo("fr.lproj/Localizable.strings");
    const StringsTable english{{"Arbeitet", "Working"}};
    EXPECT_EQ(loadStringsTable(directory.path(), "en"), english);
    EXPECT_EQ(loadStringsTable(directory.path(), "fr"), StringsTable());
    EXPECT_EQ(loadStringsTable(directory.path(), "pl"), StringsTable());
}

}  // namespace
}  // namespace fleetwise
