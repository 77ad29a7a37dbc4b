// Holds the tables of the other languages to the sources: every "…"_text literal below src/ has
// its entry in every table under resources/, with the same placeholders. A text stands in one
// literal and without escapes; any other would be missing in the tables here.

#include "foundation/text.h"
#include "localisation/strings_table.h"
#include "localisation/text_pattern.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

namespace fleetwise::testing {
namespace {

/// Text to the first source file that uses it.
std::map<std::string, std::string> textsOfAllSources() {
    static const std::regex literal(R"re("([^"]+)"_text)re");
    std::map<std::string, std::string> texts;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(sourceDirectory() + "/src")) {
        const auto extension = entry.path().extension();
        if (extension != ".h" && extension != ".cpp") continue;
        std::istringstream lines(contentsOf(entry.path().string()));
        for (std::string line; std::getline(lines, line);) {
            if (trimmed(line).starts_with("//")) continue;
            for (std::sregex_iterator match(line.begin(), line.end(), literal), end; match != end;
                 ++match) {
                texts.emplace((*match)[1], entry.path().filename().string());
            }
        }
    }
    return texts;
}

/// The tables under resources/ by their language.
std::map<std::string, StringsTable> allTables() {
    const std::string resources = sourceDirectory() + "/resources";
    std::map<std::string, StringsTable> tables;
    for (const auto& entry : std::filesystem::directory_iterator(resources)) {
        const std::string language = entry.path().stem().string();
        if (entry.path().extension() != ".lproj") continue;
        tables.emplace(language, loadStringsTable(resources, language));
    }
    return tables;
}

TEST(Texts, standInEveryTable) {
    const auto texts = textsOfAllSources();
    const auto tables = allTables();
    ASSERT_GT(texts.size(), 30U);
    ASSERT_TRUE(tables.contains("en"));
    for (const auto& [language, table] : tables) {
        for (const auto& [text, file] : texts) {
            EXPECT_TRUE(table.contains(text))
                << language << " lacks \"" << text << "\" of " << file;
        }
    }
}

TEST(Texts, keepTheirPlaceholdersInTranslation) {
    for (const auto& [language, table] : allTables()) {
        for (const auto& [german, wording] : table) {
            SCOPED_TRACE(language + ": " + german);
            EXPECT_FALSE(wording.empty());
            const auto expected = textPattern(german);
            const auto actual = textPattern(wording);
            ASSERT_EQ(actual.has_value(), expected.has_value());
            if (expected) {
                EXPECT_EQ(actual->placeholders, expected->placeholders);
            }
        }
    }
}

}  // namespace
}  // namespace fleetwise::testing
