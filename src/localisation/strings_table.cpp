#include "localisation/strings_table.h"

#include "foundation/directory.h"
#include "foundation/regular_file.h"

#include <simdjson.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t maximumTableBytes = 4 << 20;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view whiteSpace = " \t\r\n";

bool isUtf8(std::string_view text) {
    return simdjson::validate_utf8(text.data(), text.size());
}

void appendUtf8(std::string& text, unsigned codePoint) {
    const auto append = [&](unsigned byte) { text += static_cast<char>(byte); };
    if (codePoint < 0x80) {
        append(codePoint);
    } else if (codePoint < 0x800) {
        append(0xC0 | codePoint >> 6);
        append(0x80 | (codePoint & 0x3F));
    } else {
        append(0xE0 | codePoint >> 12);
        append(0x80 | (codePoint >> 6 & 0x3F));
        append(0x80 | (codePoint & 0x3F));
    }
}

/// Appends the character of four hexadecimal digits; false where they name none.
bool appendCodePoint(std::string& text, std::string_view digits) {
    unsigned codePoint = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, codePoint, 16);
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (digits.size() != 4 || result.ptr != end || isSurrogate) return false;
    appendUtf8(text, codePoint);
    return true;
}

/// Appends what the escape stands for whose part behind the backslash `rest` begins with.
/// Returns the length of that part, 0 where it is no escape.
std::size_t appendEscaped(std::string& text, std::string_view rest) {
    if (rest.empty()) return 0;
    switch (rest.front()) {
        case '"':
        case '\\':
            text += rest.front();
            return 1;
        case 'n':
            text += '\n';
            return 1;
        case 't':
            text += '\t';
            return 1;
        case 'U':
            return appendCodePoint(text, rest.substr(1, 4)) ? 5 : 0;
        default:
            return 0;
    }
}

/// Reads a table from its beginning on. A token that is not there is not consumed, so that the
/// skipping after a fault begins at the token in question.
class TableReader {
public:
    explicit TableReader(std::string_view contents) : rest(contents) {
        if (rest.starts_with(byteOrderMark)) rest.remove_prefix(byteOrderMark.size());
    }

    StringsTable readAll() {
        StringsTable table;
        for (skipBlanks(); !rest.empty(); skipBlanks()) {
            auto pair = readPair();
            if (!pair) {
                skipPast(";");
            } else if (isUtf8(pair->first) && isUtf8(pair->second)) {
                table.insert_or_assign(std::move(pair->first), std::move(pair->second));
            }
        }
        return table;
    }

private:
    std::optional<std::pair<std::string, std::string>> readPair() {
        auto key = readText();
        if (!key || !readSign('=')) return {};
        auto value = readText();
        if (!value || !readSign(';')) return {};
        return std::pair(std::move(*key), std::move(*value));
    }

    std::optional<std::string> readText() {
        skipBlanks();
        if (!rest.starts_with('"')) return {};
        std::string text;
        for (std::size_t position = 1; position < rest.size(); ++position) {
            const char character = rest[position];
            if (character == '\n' || character == '\r') return {};
            if (character == '"') {
                rest.remove_prefix(position + 1);
                return text;
            }
            if (character != '\\') {
                text += character;
                continue;
            }
            const std::size_t length = appendEscaped(text, rest.substr(position + 1));
            if (length == 0) return {};
            position += length;
        }
        return {};
    }

    bool readSign(char sign) {
        skipBlanks();
        if (!rest.starts_with(sign)) return false;
        rest.remove_prefix(1);
        return true;
    }

    /// White space and comments.
    void skipBlanks() {
        while (!rest.empty()) {
            if (rest.starts_with("//")) {
                skipPast("\n");
            } else if (rest.starts_with("/*")) {
                rest.remove_prefix(2);
                skipPast("*/");
            } else if (whiteSpace.find(rest.front()) != std::string_view::npos) {
                rest.remove_prefix(1);
            } else {
                return;
            }
        }
    }

    /// Goes on behind the next `mark`, or at the end where none follows.
    void skipPast(std::string_view mark) {
        const std::size_t found = rest.find(mark);
        rest.remove_prefix(found == std::string_view::npos ? rest.size() : found + mark.size());
    }

    std::string_view rest;
};

}  // namespace

StringsTable parseStringsTable(std::string_view contents) {
    return TableReader(contents).readAll();
}

StringsTable loadStringsTable(const std::string& directory, std::string_view language) {
    const std::string folder = joinPath(directory, std::string(language) + ".lproj");
    const auto contents =
        readRegularFile(joinPath(folder, "Localizable.strings"), maximumTableBytes);
    return contents ? parseStringsTable(*contents) : StringsTable();
}

}  // namespace fleetwise
