#pragma once

// RapidJSON reads with whatever instructions every processor of the target has.
#if defined(__SSE4_2__)
#define RAPIDJSON_SSE42
#elif defined(__SSE2__)
#define RAPIDJSON_SSE2
#endif

#include <rapidjson/reader.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace fleetwise::hook {

/// Where a value stands in its document: the keys of the objects around it, outermost first. The
/// elements of a list stand under the empty key.
class JsonPath {
public:
    /// Whether the path is exactly the given keys.
    template <typename... Keys>
    bool is(Keys... expected) const {
        if (depth != sizeof...(expected)) return false;
        std::size_t index = 0;
        return ((keys[index++] == std::string_view(expected)) && ...);
    }

    std::size_t size() const { return depth; }

    /// The key at `index`, which must be less than keptKeys and size().
    std::string_view operator[](std::size_t index) const { return keys[index]; }

    static constexpr std::size_t keptKeys = 6;  ///< deeper ones are counted but not remembered

private:
    template <typename>
    friend class JsonWalk;

    std::array<std::string_view, keptKeys> keys;
    std::size_t depth = 0;
};

/// Passes the values of a document to a sink, in their order, as `text(path, string_view)`,
/// `number(path, double)`, `truth(path, bool)`, and `begin(path)` for each object or list.
/// This is the handler interface of RapidJSON's SAX reader.
template <typename Sink>
class JsonWalk {
public:
    static constexpr std::size_t maximumDepth = 1000;

    explicit JsonWalk(Sink& receiver) : sink(receiver) {}

    bool Null() { return true; }
    bool Bool(bool value) {
        sink.truth(path, value);
        return true;
    }
    bool Int(int value) { return Double(value); }
    bool Uint(unsigned value) { return Double(value); }
    bool Int64(std::int64_t value) { return Double(static_cast<double>(value)); }
    bool Uint64(std::uint64_t value) { return Double(static_cast<double>(value)); }
    bool Double(double value) {
        sink.number(path, value);
        return true;
    }
    bool RawNumber(const char*, rapidjson::SizeType, bool) { return true; }
    bool String(const char* text, rapidjson::SizeType length, bool) {
        sink.text(path, {text, length});
        return true;
    }
    bool Key(const char* text, rapidjson::SizeType length, bool) {
        setKey({text, length});
        return true;
    }
    bool StartObject() { return enter(); }
    bool EndObject(rapidjson::SizeType) { return leave(); }
    bool StartArray() { return enter(); }
    bool EndArray(rapidjson::SizeType) { return leave(); }

private:
    bool enter() {
        sink.begin(path);
        if (path.depth == maximumDepth) return false;
        ++path.depth;
        setKey({});
        return true;
    }
    bool leave() {
        --path.depth;
        return true;
    }
    void setKey(std::string_view key) {
        if (path.depth <= JsonPath::keptKeys) path.keys[path.depth - 1] = key;
    }

    Sink& sink;
    JsonPath path;
};

/// Reads the document at `text`, which parserPadding zero bytes follow, and unescapes its texts in
/// place; what follows the document is ignored. Whether it is valid JSON and not nested deeper than
/// maximumDepth.
template <typename Sink>
bool walkJsonInPlace(char* text, Sink& sink) {
    constexpr unsigned flags = rapidjson::kParseInsituFlag | rapidjson::kParseFullPrecisionFlag |
                               rapidjson::kParseStopWhenDoneFlag;
    JsonWalk<Sink> walk(sink);
    rapidjson::InsituStringStream stream(text);
    // Long numbers are gathered there; only one of a thousand digits needs the heap.
    std::array<char, 1024> space;
    rapidjson::MemoryPoolAllocator<> allocator(space.data(), space.size());
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<>>
        reader(&allocator);
    return !reader.Parse<flags>(stream, walk).IsError();
}

}  // namespace fleetwise::hook
