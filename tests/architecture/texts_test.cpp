// Holds the tables of the other languages to the sources: every "…"_text literal below src/ has
// its entry in every table under resources/, with the same placeholders. A text stands in one
// literal and without escapes; any other would be missing in the tables here.

#include "foundation/text.h"
#include "localisation/language.h"
#include "localisation/strings_table.h"
#include "localisation/text_pattern.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>
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

/// What is counted, as localisedCount is given it: the wording for several.
std::set<std::string> countedTexts() {
    static const std::regex call(
        R"re((?:shownCount|localisedCount)\([^;]*?"[^"]+"_text,\s*"([^"]+)"_text)re");
    std::set<std::string> texts;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(sourceDirectory() + "/src")) {
        if (entry.path().extension() != ".cpp") continue;
        const std::string source = contentsOf(entry.path().string());
        for (std::sregex_iterator match(source.begin(), source.end(), call), end; match != end;
             ++match) {
            texts.insert((*match)[1]);
        }
    }
    return texts;
}

TEST(Texts, areThereInEveryLanguageAndNoMore) {
    const auto texts = textsOfAllSources();
    const auto tables = allTables();
    for (const std::string_view language : interfaceLanguages)
        EXPECT_TRUE(language == "de" || tables.contains(std::string(language))) << language;
    for (const auto& [language, table] : tables) {
        for (const auto& [german, wording] : table) {
            EXPECT_TRUE(texts.contains(german.substr(0, german.find("|few"))))
                << language << " has \"" << german << "\", which nothing shows";
        }
    }
}

TEST(Texts, haveAllFormsOfWhatIsCounted) {
    const StringsTable polish = loadStringsTable(sourceDirectory() + "/resources", "pl");
    const auto texts = countedTexts();
    ASSERT_GT(texts.size(), 3U);
    for (const std::string& text : texts) {
        EXPECT_TRUE(polish.contains(text + "|few")) << text;
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
