#include "foundation/date.h"
#include "foundation/json.h"
#include "foundation/json_reader.h"
#include "foundation/json_surrogates.h"
#include "foundation/saturating.h"
#include "foundation/serial_queue.h"
#include "foundation/text.h"
#include "foundation/user_defaults.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>

namespace fleetwise {
namespace {

using testing::padded;

TEST(Date, readsInternetDates) {
    const struct {
        const char* text;
        std::optional<double> seconds;
    } rows[] = {
        {"2026-11-21T02:05:29.783Z", 1795226729.783},
        {"2026-11-21T02:05:29Z", 1795226729},
        {"2026-11-21T04:05:29+02:00", 1795226729},
        {"1970-01-01T00:00:00.000Z", 0},
        {"2026-11-21 02:05:29Z", {}},
        {"2026-13-21T02:05:29Z", {}},
        {"2026-11-21T02:05:29.783Zx", {}},
        {"2026-11-21T02:05:29", {}},
        {"", {}},
        {"Z", {}},
        {"2026-11-21T02:05z:38.154Z", {}},
        {"2026-02-29T00:00:00Z", {}},
        {"2026-11-21T24:00:00Z", {}},
        {"2026-11-21T02:05:29.1234567891234567890Z", 1795226729.123456789},
        {"2026-11-21T02:05:29+2:00", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto date = parseInternetDate(row.text);
        ASSERT_EQ(date.has_value(), row.seconds.has_value());
        if (date) {
            EXPECT_NEAR(secondsSince1970(*date), *row.seconds, 1e-6);
        }
    }
}

TEST(Date, writtenDatesReadBackTheSame) {
    for (const char* text : {"2026-11-21T02:05:29.783Z", "2026-11-21T02:05:29.999Z",
                             "2001-09-09T01:46:40.001Z", "1969-12-31T23:59:59.999Z"}) {
        EXPECT_EQ(internetDate(*parseInternetDate(text)), text);
    }
    EXPECT_EQ(internetDate(dateFromSeconds(std::numeric_limits<double>::quiet_NaN())),
              "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(internetDate(dateFromSeconds(1e300)), "9999-12-31T23:59:59.000Z");
}

TEST(Date, followsTheCalendarAcrossDaylightSaving) {
    const Calendar berlin = date::locate_zone("Europe/Berlin");
    const char* pattern = "%d.%m.%Y %H:%M:%S";
    EXPECT_EQ(formatDate(*parseInternetDate("2026-10-25T00:30:00Z"), berlin, pattern),
              "25.10.2026 02:30:00");
    EXPECT_EQ(formatDate(*parseInternetDate("2026-10-25T01:30:00Z"), berlin, pattern),
              "25.10.2026 02:30:00");
}

TEST(SaturatingSum, holdsAtBothEnds) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(saturatingSum(2, 3), 5);
    EXPECT_EQ(saturatingSum(largest, 1), largest);
    EXPECT_EQ(saturatingSum(smallest, -1), smallest);
    EXPECT_EQ(saturatingSum(largest, smallest), -1);
}

TEST(Text, shortensAtCharacters) {
    EXPECT_EQ(shortenedText("Änderung", 8), "Änderung");
    EXPECT_EQ(shortenedText("Änderung", 7), "Änderu…");
    EXPECT_EQ(shortenedText("ÄÖÜ", 2), "Ä…");
    EXPECT_EQ(shortenedText("x", 0), "");
    EXPECT_EQ(shortenedText("\xC3", 4), "\xC3");
}

TEST(Text, becomesPrintable) {
    EXPECT_EQ(printable("a\nb\x1b[31m\x7f\xc2\x9b"), "a b [31m  ");
    EXPECT_EQ(printable("\xff"
                        "ok\xe2\x82"),
              "\xEF\xBF\xBDok\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(printable("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(printable("Prüfung – 漢字 🙂"), "Prüfung – 漢字 🙂");
}

TEST(Json, keepsUnknownMembersAndReadsTypedOnes) {
    const auto document = parseJson(R"({"b":1.5,"a":{"x":[1]},"t":"2026-11-21T02:05:29.783Z"})");
    ASSERT_TRUE(document);
    EXPECT_EQ(encodeJson(*document), R"({"a":{"x":[1]},"b":1.5,"t":"2026-11-21T02:05:29.783Z"})");
    EXPECT_EQ(member<double>(*document, "b"), 1.5);
    EXPECT_FALSE(member<std::string>(*document, "b"));
    EXPECT_TRUE(member<Date>(*document, "t"));
    EXPECT_FALSE(member<bool>(Json::array(), "b"));
    EXPECT_FALSE(parseJson("{\"a\":"));
    EXPECT_FALSE(parseJson(std::string(100'000, '[')));
    EXPECT_EQ(encodeJson(Json{{"bad", "\xff"}}), "{\"bad\":\"\xEF\xBF\xBD\"}");
}

TEST(JsonReader, acceptsOneWholeObjectOnly) {
    const struct {
        const char* name;
        std::string text;
        bool isObject;
    } rows[] = {
        {"empty object", "{}", true},
        {"blanks around", " \t{\"a\":1}\r", true},
        {"nested", R"({"a":{"b":[{},[]]},"c":null})", true},
        {"nothing", "", false},
        {"array", "[1]", false},
        {"text", "\"a\"", false},
        {"torn in a string", R"({"a":"b)", false},
        {"torn behind a value", R"({"a":{"b":1})", false},
        {"unbalanced", R"({"b":[{"a":1}})", false},
        {"no colon", R"({"b" 1,"a":1})", false},
        {"no value", R"({"b":,"a":1})", false},
        {"no comma", R"({"b":1 "a":1})", false},
        {"two objects", "{}{}", false},
        {"garbage behind", R"({"a":1}x)", false},
        {"not UTF-8", "{\"a\":\"\xff\"}", false},
        {"a thousand levels and more", std::string(5000, '[') + std::string(5000, ']'), false},
    };
    const auto expect = [](const auto& row, std::string_view text) {
        JsonReader reader;
        EXPECT_EQ(reader.readObject(text,
                                    [](JsonObject& object) {
                                        for (const char* key : {"a", "z", "a", "b"}) {
                                            memberIfPresent<std::int64_t>(object, key);
                                        }
                                    }),
                  row.isObject);
        EXPECT_EQ(reader.walkObject(text,
                                    [](JsonObject& object) {
                                        for (auto field : object) {
                                            JsonValue value;
                                            if (field.value().get(value)) return;
                                            if (!readValue<std::int64_t>(value)) return;
                                        }
                                    }),
                  row.isObject);
    };
    for (const auto& row : rows) {
        // What stands behind the text is none of it.
        for (const char behind : {'\0', '\n', '}', ',', '"'}) {
            SCOPED_TRACE(std::string(row.name) + " before " + behind);
            const std::string text = row.text + std::string(jsonPadding, behind);
            expect(row, std::string_view(text).substr(0, row.text.size()));
        }
    }
}

TEST(JsonReader, mendsTextsCutWithinAnEmoji) {
    const struct {
        const char* written;
        const char* read;
    } rows[] = {
        {R"({"t":"cut \ud83d"})", "cut \xEF\xBF\xBD"},
        {R"({"t":"\uDE00 cut"})", "\xEF\xBF\xBD cut"},
        {R"({"t":"\ud83d\ud83d\ude00"})", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
        {R"({"t":"\\ud83d"})", R"(\ud83d)"},
        {R"({"t":"\ud83d\ude00"})", "\xF0\x9F\x98\x80"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.written);
        JsonReader reader;
        const bool isObject = reader.readObject(padded(row.written), [&](JsonObject& object) {
            EXPECT_EQ(memberIfPresent<std::string_view>(object, "t"), row.read);
        });
        EXPECT_TRUE(isObject);
    }
    EXPECT_FALSE(withoutLoneSurrogates(R"({"t":"\u00e4 \" \\ \ud83d\ude00"})"));
    EXPECT_FALSE(withoutLoneSurrogates("\\"));
    EXPECT_FALSE(withoutLoneSurrogates("\\u12"));
}

TEST(JsonReader, tellsAbsentFromWrongType) {
    const std::string text =
        padded(R"({"text":"a\u00e4\n","whole":3.0,"half":1.5,"null":null,"big":1e300})");
    const bool isObject = JsonReader().readObject(text, [](JsonObject& object) {
        EXPECT_EQ(readMember<double>(object, "half")->value(), 1.5);
        EXPECT_EQ(readMember<std::int64_t>(object, "whole")->value(), 3);
        EXPECT_EQ(readMember<std::string_view>(object, "text")->value(), "aä\n");
        EXPECT_EQ(readMember<std::int64_t>(object, "half").error(), JsonFault::wrongType);
        EXPECT_EQ(readMember<std::int64_t>(object, "big").error(), JsonFault::wrongType);
        EXPECT_EQ(readMember<JsonObject>(object, "text").error(), JsonFault::wrongType);
        EXPECT_FALSE(readMember<double>(object, "null")->has_value());
        EXPECT_FALSE(readMember<double>(object, "missing")->has_value());
        EXPECT_FALSE(memberIfPresent<bool>(object, "text"));
    });
    EXPECT_TRUE(isObject);
}

TEST(UserDefaults, readsStoredValuesBeforeRegisteredOnes) {
    InMemoryUserDefaults defaults;
    defaults.registerDefaults({{"shown", true}, {"days", 1}, {"mode", "status"}});
    EXPECT_EQ(defaults.boolean("shown"), true);
    EXPECT_EQ(defaults.integer("days"), 1);
    EXPECT_EQ(defaults.string("mode"), "status");
    defaults.set("shown", "false");  // as a text-only store hands it back
    defaults.set("days", "30");
    defaults.set("ids", R"(["a","b",3])");
    defaults.set("map", R"({"a":true})");
    EXPECT_EQ(defaults.boolean("shown"), false);
    EXPECT_EQ(defaults.integer("days"), 30);
    EXPECT_EQ(defaults.strings("ids"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(defaults.dictionary("map"), Json({{"a", true}}));
    defaults.set("days", "thirty");
    EXPECT_FALSE(defaults.integer("days"));
    defaults.remove("days");
    EXPECT_EQ(defaults.integer("days"), 1);
    EXPECT_TRUE(defaults.strings("missing").empty());
    EXPECT_EQ(defaults.dictionary("missing"), Json::object());
}

TEST(SerialQueue, runsJobsInOrderAndDrains) {
    std::vector<int> order;
    {
        SerialQueue queue;
        for (int job = 0; job < 100; ++job) {
            queue.post([&order, job] { order.push_back(job); });
        }
        queue.drain();
        EXPECT_EQ(order.size(), 100U);
        queue.post([&order] { order.push_back(100); });
    }
    ASSERT_EQ(order.size(), 101U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

}  // namespace
}  // namespace fleetwise
