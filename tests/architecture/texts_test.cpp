// Holds the tables of the other languages to the sources: every "…"_text literal below src/ has
// its entry in every table under resources/, with the same placeholders.
//
// The sources are read as the compiler does, as far as it takes to tell a literal from a comment:
// white space and comments are passed over, neighbouring string literals are joined, and what
// carries the suffix _text is a text of the interface.

#include "localisation/strings_table.h"
#include "localisation/text_pattern.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

namespace fleetwise::testing {
namespace {

bool isNameCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

/// Goes through one source file and collects its texts.
class SourceReader {
public:
    explicit SourceReader(std::string_view source) : rest(source) {}

    std::set<std::string> texts() {
        while (!rest.empty()) {
            if (rest.starts_with("//")) {
                skipPast("\n");
            } else if (rest.starts_with("/*")) {
                rest.remove_prefix(2);
                skipPast("*/");
            } else if (rest.starts_with("R\"")) {
                readRawLiteral();
            } else if (rest.starts_with('"')) {
                readLiteral();
            } else if (rest.starts_with('\'')) {
                skipCharacterLiteral();
            } else {
                readOther();
            }
        }
        return found;
    }

private:
    void readLiteral() {
        std::string text;
        std::size_t position = 1;
        while (position < rest.size() && rest[position] != '"') {
            const bool isEscape = rest[position] == '\\';
            text +=
                isEscape ? escaped(rest.substr(position + 1, 1)) : std::string(1, rest[position]);
            position += isEscape ? 2 : 1;
        }
        finishLiteral(text, position + 1);
    }

    static std::string escaped(std::string_view escape) {
        if (escape == "n") return "\n";
        if (escape == "t") return "\t";
        if (escape == "\"" || escape == "\\") return std::string(escape);
        return "<unknown escape>";
    }

    void readRawLiteral() {
        const std::size_t open = rest.find('(');
        const std::string close = ")" + std::string(rest.substr(2, open - 2)) + "\"";
        const std::size_t end = rest.find(close, open);
        finishLiteral(rest.substr(open + 1, end - open - 1), end + close.size());
    }

    void finishLiteral(std::string_view text, std::size_t length) {
        literal = literal.value_or("").append(text);
        rest.remove_prefix(std::min(length, rest.size()));
        // What is empty is the declaration of the suffix itself.
        if (rest.starts_with("_text") && !literal->empty()) found.insert(*literal);
        if (!rest.empty() && isNameCharacter(rest.front())) literal.reset();
    }

    /// 'x', but not the mark between the digits of a number.
    void skipCharacterLiteral() {
        const std::size_t end = rest.find('\'', rest.starts_with("'\\") ? 3 : 2);
        rest.remove_prefix(std::min(end, rest.size() - 1) + 1);
        literal.reset();
    }

    /// One name or number as a whole, or one other character.
    void readOther() {
        const bool isSpace = std::isspace(static_cast<unsigned char>(rest.front())) != 0;
        if (!isSpace) literal.reset();
        std::size_t length = 1;
        if (isNameCharacter(rest.front())) {
            while (length < rest.size() && (isNameCharacter(rest[length]) || rest[length] == '\''))
                ++length;
        }
        rest.remove_prefix(length);
    }

    void skipPast(std::string_view mark) {
        const std::size_t position = rest.find(mark);
        rest.remove_prefix(position == std::string_view::npos ? rest.size()
                                                              : position + mark.size());
    }

    std::string_view rest;
    std::optional<std::string> literal;  ///< of the string literals just read, joined
    std::set<std::string> found;
};

/// Text to the first source file that uses it.
std::map<std::string, std::string> textsOfAllSources() {
    std::map<std::string, std::string> texts;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(sourceDirectory() + "/src")) {
        const auto extension = entry.path().extension();
        if (extension != ".h" && extension != ".cpp") continue;
        const std::string source = contentsOf(entry.path().string());
        for (const auto& text : SourceReader(source).texts()) {
            texts.emplace(text, entry.path().filename().string());
        }
    }
    return texts;
}

TEST(Texts, areFoundInSources) {
    using Found = std::set<std::string>;
    const struct {
        const char* name;
        std::string source;
        Found expected;
    } rows[] = {
        {"several", R"(f("Plan"_text, "Auto"_text);)", {"Plan", "Auto"}},
        {"other literals", R"(f("a", "b"sv, 'c', "Plan"_text))", {"Plan"}},
        {"comments", "// \"a\"_text\n/* \"b\"_text */ \"Plan\"_text", {"Plan"}},
        {"comment sign in a literal", R"("http://x" + "Plan"_text)", {"Plan"}},
        {"escapes", R"("\"a\"\\\n"_text)", {"\"a\"\\\n"}},
        {"joined", "\"Pl\"\n  // why\n  \"an\"_text; \"a\", \"b\"_text", {"Plan", "b"}},
        {"quotes as characters", R"('"' '\'' '\\' "Plan"_text '"')", {"Plan"}},
        {"marks between digits", R"(200'000 "Plan"_text 1'0)", {"Plan"}},
        {"declaration of the suffix", R"(Text operator""_text(const char*);)", {}},
        {"raw", "R\"x(a\"_text)x\"_text", {"a\"_text"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(SourceReader(row.source).texts(), row.expected);
    }
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
