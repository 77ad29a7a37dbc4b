#include "sources/settings_document.h"

#include "foundation/json_reader.h"
#include "foundation/utf8.h"

namespace fleetwise {

namespace {

constexpr std::size_t maximumDepth = 1000;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool takeOneOf(std::string_view& text, std::string_view characters) {
    if (text.empty() || characters.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
    return true;
}

bool takeDigits(std::string_view& text) {
    bool hasAny = false;
    while (takeOneOf(text, "0123456789"))
        hasAny = true;
    return hasAny;
}

/// The number at the front of `text` by the grammar of RFC 8259, whatever its size; empty where
/// there is none, or more behind it than white space.
std::string_view numberIn(std::string_view text) {
    std::string_view rest = text;
    takeOneOf(rest, "-");
    if (!takeOneOf(rest, "0") && !takeDigits(rest)) return {};
    if (takeOneOf(rest, ".") && !takeDigits(rest)) return {};
    if (takeOneOf(rest, "eE")) {
        takeOneOf(rest, "+-");
        if (!takeDigits(rest)) return {};
    }
    if (rest.find_first_not_of(" \t\n\r") != std::string_view::npos) return {};
    return text.substr(0, text.size() - rest.size());
}

/// Builds a document from a walk in order over a text. Each function is false at the first fault,
/// where the walk must end.
class DocumentBuilder {
public:
    bool build(JsonObject object, Json& into) {
        into = Json::object();
        for (auto next : object) {
            simdjson::ondemand::field member;
            std::string_view key;
            if (std::move(next).get(member) || member.unescaped_key().get(key)) return false;
            if (!build(member.value(), into[std::string(key)])) return false;
        }
        return true;
    }

private:
    bool build(JsonArray array, Json& into) {
        into = Json::array();
        for (auto next : array) {
            JsonValue element;
            if (next.get(element)) return false;
            if (!build(element, into.emplace_back())) return false;
        }
        return true;
    }

    bool build(JsonValue value, Json& into) {
        simdjson::ondemand::json_type type{};
        if (value.type().get(type)) return false;
        switch (type) {
            case simdjson::ondemand::json_type::object:
                return buildNested<JsonObject>(value, into);
            case simdjson::ondemand::json_type::array:
                return buildNested<JsonArray>(value, into);
            case simdjson::ondemand::json_type::number:
                return buildNumber(value, into);
            case simdjson::ondemand::json_type::string:
                return buildScalar<std::string_view>(value, into);
            case simdjson::ondemand::json_type::boolean:
                return buildScalar<bool>(value, into);
            case simdjson::ondemand::json_type::null:
                return buildNull(value, into);
        }
        return false;
    }

    template <typename T>
    bool buildNested(JsonValue value, Json& into) {
        T elements;
        if (depth == maximumDepth || value.get(elements)) return false;
        ++depth;
        const bool isWhole = build(elements, into);
        --depth;
        return isWhole;
    }

    template <typename T>
    static bool buildScalar(JsonValue value, Json& into) {
        T scalar;
        if (value.get(scalar)) return false;
        into = scalar;
        return true;
    }

    static bool buildNull(JsonValue value, Json& into) {
        bool isNull = false;
        into = nullptr;
        return !value.is_null().get(isNull) && isNull;
    }

    static bool buildNumber(JsonValue value, Json& into) {
        // Read as a number it would have to fit one of the parser's own types.
        const std::string_view digits = numberIn(value.raw_json_token());
        into = Json::binary({digits.begin(), digits.end()});
        return !digits.empty();
    }

    std::size_t depth = 1;
};

class DocumentPrinter {
public:
    void print(const Json& value) {
        if (value.is_object()) {
            printList("{}", value.get_ref<const Json::object_t&>(), [this](const auto& member) {
                text += encodeJson(member.first) + ": ";
                print(member.second);
            });
        } else if (value.is_array()) {
            printList("[]", value.get_ref<const Json::array_t&>(),
                      [this](const Json& element) { print(element); });
        } else if (value.is_binary()) {
            text.append(value.get_binary().begin(), value.get_binary().end());
        } else {
            text += encodeJson(value);
        }
    }

    std::string text;

private:
    template <typename List, typename PrintElement>
    void printList(std::string_view brackets, const List& list, PrintElement&& printElement) {
        text += brackets.front();
        ++depth;
        std::string_view separator;
        for (const auto& element : list) {
            text += separator;
            breakLine();
            printElement(element);
            separator = ",";
        }
        --depth;
        if (!list.empty()) breakLine();
        text += brackets.back();
    }

    void breakLine() {
        text += '\n';
        text.append(2 * depth, ' ');
    }

    std::size_t depth = 0;
};

}  // namespace

std::optional<Json> parseSettings(std::string_view text) {
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    std::string mended = wellFormedUtf8(text);
    mended.reserve(mended.size() + jsonPadding);
    Json document;
    bool isWhole = false;
    JsonReader reader;
    const bool isObject = reader.walkObject(
        mended, [&](JsonObject& object) { isWhole = DocumentBuilder().build(object, document); });
    if (!isObject || !isWhole) return {};
    return document;
}

std::string printSettings(const Json& document) {
    DocumentPrinter printer;
    printer.print(document);
    return printer.text + '\n';
}

}  // namespace fleetwise
