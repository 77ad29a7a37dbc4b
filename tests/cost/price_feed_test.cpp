// The update feed, the blocks of prices in it, and which prices are in use in the end.

#include "cost/price_feed.h"

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

using Fault = UpdateFeedFault;
using PriceKind = PriceFailure::Kind;
using OriginKind = Prices::Origin::Kind;

constexpr const char* opusRow =
    R"("opus":{"eingabe":6,"ausgabe":30,"lesen":0.6,"schreiben_5min":7.5,"schreiben_1h":12})";
constexpr Prices::TokenPrice opusPrice{6, 30, 0.6, 7.5, 12};

std::string block(const std::string& models, const std::string& day = "2026-09-01",
                  int revision = 1) {
    return R"({"stand":")" + day + R"(","fassung":)" + std::to_string(revision) +
           R"(,"modelle":{)" + models + "}}";
}

std::string feedOf(const std::string& content) {
    return R"(<?xml version="1.0" encoding="utf-8"?><rss><channel>)" + content + "</channel></rss>";
}

std::string feedWith(const std::string& prices) {
    return feedOf("<fleetwise:preise><![CDATA[" + prices + "]]></fleetwise:preise>");
}

TEST(UpdateFeed, tellsPricesAndTheNewestVersion) {
    const auto feed = readUpdateFeed(feedOf(
        "<item><enclosure url='x' sparkle:version='999' sparkle:shortVersionString='0.9'/></item>"
        "<item><a:shortVersionString> 0.10.0 </a:shortVersionString></item>"
        "<item><b:version>0.10.0-beta.2</b:version><b:version>7</b:version></item>"
        "<item><enclosure version='latest'/></item><version>8</version>"
        "<item><deep><fleetwise:preise>{&quot;a&quot;:<![CDATA[\"<\"]]>}</fleetwise:preise></deep>"
        "</item><preise>no</preise><fleetwise:preise/>"));
    ASSERT_TRUE(feed);
    EXPECT_EQ(feed->newestVersion, "0.10.0");
    EXPECT_EQ(feed->priceBlocks, (std::vector<std::string>{R"({"a":"<"})", ""}));
    EXPECT_EQ(readUpdateFeed("\xEF\xBB\xBF<rss/>"), UpdateFeed());
}

TEST(UpdateFeed, refusesWhatIsHostileOrNoXml) {
    const std::string bomb = R"(<!DOCTYPE r [<!ENTITY a "aa"><!ENTITY b "&a;&a;">]><r>&b;</r>)";
    const struct {
        const char* name;
        std::string bytes;
        Fault fault;
    } rows[] = {
        {"nothing", "", Fault::notWellFormed},
        {"no XML", "404 page", Fault::notWellFormed},
        {"cut off", feedWith(block(opusRow)).substr(0, 200), Fault::notWellFormed},
        {"crossed", "<a><b></a></b>", Fault::notWellFormed},
        {"open a million times", std::string(1'000'000, '<'), Fault::notWellFormed},
        {"entities", bomb, Fault::doctype},
        {"a reference elsewhere", "<!DOCTYPE r SYSTEM 'file:///etc/passwd'><r/>", Fault::doctype},
        {"too large", feedOf(std::string(4 << 20, ' ')), Fault::tooLarge},
        {"NUL", std::string("<r>\0</r>", 8), Fault::notUtf8},
        {"not UTF-8", "<r>\xFF</r>", Fault::notUtf8},
        {"another encoding", "<?xml version='1.0' encoding='ISO-8859-1'?><r/>", Fault::notUtf8},
    };
    for (const auto& row : rows) {
        const auto feed = readUpdateFeed(row.bytes);
        ASSERT_FALSE(feed) << row.name;
        EXPECT_EQ(feed.error(), row.fault) << row.name;
    }
}

TEST(UpdateFeed, mayBeNestedDeeperThanTheStack) {
    std::string opening;
    std::string closing;
    for (int level = 0; level < 500'000; ++level) {
        opening += "<a>";
        closing += "</a>";
    }
    const auto feed = readUpdateFeed(opening + "<fleetwise:preise/>" + closing);
    ASSERT_TRUE(feed);
    EXPECT_EQ(feed->priceBlocks.size(), 1U);
    EXPECT_FALSE(readUpdateFeed(opening + opening));
}

TEST(PriceBlock, isReadWhereAllOfItIsRight) {
    const auto opus = [](const std::string& from, const std::string& to) {
        std::string row = opusRow;
        return block(row.replace(row.find(from), from.size(), to));
    };
    const auto malformed = PriceKind::malformed;
    const struct {
        const char* name;
        std::string text;
        std::optional<PriceKind> failure = {};
    } rows[] = {
        {"known family", block(opusRow)},
        {"beside unknown ones", block(opusRow + std::string(R"(,"new":{"eingabe":-1},"b":7)"))},
        {"highest price", opus("30", "30.0")},
        {"only unknown ones", block(R"("new":{"eingabe":1})"), PriceKind::noKnownFamily},
        {"no families", block(""), PriceKind::noKnownFamily},
        {"a bad one beside a good one", block(opusRow + std::string(R"(,"gpt":{})")), malformed},
        {"missing price", opus(R"("lesen":0.6,)", ""), malformed},
        {"negative", opus("0.6", "-0.6"), malformed},
        {"too high", opus("30", "10000.1"), malformed},
        {"infinite", opus("30", "1e999"), malformed},
        {"no number", opus("30", "NaN"), malformed},
        {"text", opus("30", "\"30\""), malformed},
        {"truth", opus("30", "true"), malformed},
        {"price named twice", opus("\"lesen\"", R"("lesen":1,"lesen")"), malformed},
        {"no such day", block(opusRow, "2026-02-29"), malformed},
        {"no models", R"({"stand":"2026-09-01"})", malformed},
        {"list of models", R"({"stand":"2026-09-01","modelle":[]})", malformed},
        {"no object", "[1]", malformed},
        {"empty", "", malformed},
        {"deep", std::string(10'000, '['), malformed},
        {"not UTF-8", block(opusRow, "\xFF"), malformed},
    };
    const Prices::Book expected{.table = {{"opus", opusPrice}},
                                .asOf = "2026-09-01",
                                .origin = {.kind = OriginKind::fetched}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto book = parsePriceBlock(row.text);
        ASSERT_EQ(book.has_value(), !row.failure);
        if (book) {
            EXPECT_EQ(*book, expected);
        } else {
            EXPECT_EQ(book.error().kind, *row.failure);
        }
    }
}

TEST(PriceBlock, isOfADayOfTheCalendar) {
    for (const char* day : {"2028-02-29", "2026-12-31"})
        EXPECT_TRUE(isValidDate(day)) << day;
    for (const char* day : {"", "2026-02-29", "2026-2-9", " 2026-01-01", "2026-01-01 ",
                            "2026-00-10", "2026-13-01", "2026-+1-01", "20260-1-01", "2026/01/01"})
        EXPECT_FALSE(isValidDate(day)) << day;
}

TEST(PriceBlock, isTheOneOfTheHighestRevision) {
    const std::string torn = R"({"fassung":99)";
    const std::string none = R"({"fassung":"100"})";
    const std::string below = R"({"fassung":-1})";
    const std::string two = R"({"fassung":2})";
    const std::string alsoTwo = R"({"fassung":2,"a":1})";
    const std::string huge = R"({"fassung":18446744073709551615})";
    const std::vector<std::vector<std::string>> rows{// The expected one first.
                                                     {below, torn, none, below},
                                                     {two, two, alsoTwo, below},
                                                     {none, none, torn},
                                                     {huge, two, huge}};
    for (const auto& row : rows) {
        const std::vector<std::string> blocks(row.begin() + 1, row.end());
        ASSERT_NE(newestPriceBlock(blocks), nullptr);
        EXPECT_EQ(*newestPriceBlock(blocks), row.front());
    }
    EXPECT_EQ(newestPriceBlock({}), nullptr);
}

/// Everything around the prices, in a folder of its own.
class PricesInUse : public ::testing::Test {
protected:
    ~PricesInUse() override { Prices::install(Prices::Book::builtIn()); }

    OriginKind originInUse() const { return Prices::current().origin.kind; }

    TemporaryDirectory home;
    std::string file = home.at("prices.json");
    InMemoryUserDefaults defaults;
    std::vector<Prices::Book> published;
    PriceSettings settings{defaults, file,
                           [this](const Prices::Book& book) { published.push_back(book); }};
    PriceFeed feed{file, settings};
    Date now = dateFromSeconds(1'800'000'000);
};

TEST_F(PricesInUse, areThoseOfTheFeedFromThenOn) {
    const std::string prices = block(opusRow);
    ASSERT_TRUE(feed.adopt(feedWith(prices), now));
    EXPECT_EQ(Prices::price("opus"), opusPrice);
    EXPECT_FALSE(Prices::price("haiku")) << "what the feed does not name has no price";
    EXPECT_EQ(contentsOf(file), prices);
    EXPECT_EQ(feed.lastSeen(), now);
    EXPECT_FALSE(feed.lastError());
    EXPECT_EQ(published.back(), Prices::current());

    PriceSettings later(defaults, file, {});
    EXPECT_EQ(later.load(), Prices::current());
    home.write("prices.json", "{torn");
    EXPECT_EQ(later.load(), Prices::Book::builtIn());
}

TEST_F(PricesInUse, stayWhereTheFeedBringsNoneThatAreBetter) {
    feed.adopt(feedWith(block(opusRow, "2026-09-02")), now);
    const auto book = Prices::current();
    const std::string stored = contentsOf(file);
    const struct {
        const char* name;
        std::string bytes;
        const char* error;
    } rows[] = {
        {"older", feedWith(block(opusRow, "2026-09-01", 9)),
         "ältere Fassung (Stand 2026-09-01) — nicht übernommen"},
        {"no block, and nothing else said", feedOf(""),
         "ältere Fassung (Stand 2026-09-01) — nicht übernommen"},
        {"malformed", feedWith("{}"), "Datei unbrauchbar oder Datum ungültig"},
        {"unknown", feedWith(block("", "2026-09-03")), "keine bekannte Modellfamilie enthalten"},
        {"no XML", "<html>", "Update-Feed nicht lesbar"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        feed.adopt(row.bytes, now + Seconds(5));
        EXPECT_EQ(feed.lastError(), row.error);
        EXPECT_EQ(feed.lastSeen(), now);
        EXPECT_EQ(Prices::current(), book);
        EXPECT_EQ(contentsOf(file), stored);
    }
    feed.adopt(feedWith(block(opusRow, "2026-09-02", 2)), now + Seconds(9));
    EXPECT_FALSE(feed.lastError());
    EXPECT_EQ(feed.lastSeen(), now + Seconds(9)) << "of the same day is not older";
    EXPECT_NE(contentsOf(file), stored);
}

TEST_F(PricesInUse, areTheNewOnesEvenIfTheyCannotBeStored) {
    std::filesystem::create_directories(file + "/in the way");
    feed.adopt(feedWith(block(opusRow)), now);
    EXPECT_EQ(Prices::price("opus"), opusPrice);
    EXPECT_EQ(feed.lastSeen(), now);
    EXPECT_TRUE(feed.lastError().value_or("").starts_with("Preise nicht gespeichert: "));
}

TEST_F(PricesInUse, areTheUsersOwnWhereThereAreAny) {
    const auto noPriceYet = settings.setOverride(3.0, "sonnet.input");
    EXPECT_EQ(noPriceYet, Prices::Book::builtIn()) << "four of its prices are not known";
    for (const char* key :
         {"sonnet.output", "sonnet.cacheRead", "sonnet.cacheWrite5m", "sonnet.cacheWrite1h"})
        settings.setOverride(4.0, key);
    settings.setOverride(0.0, "opus.cacheRead");
    EXPECT_EQ(Prices::price("sonnet"), (Prices::TokenPrice{3, 4, 4, 4, 4}));
    EXPECT_EQ(Prices::price("opus"), (Prices::TokenPrice{5, 25, 0, 6.25, 10}));
    EXPECT_EQ(originInUse(), OriginKind::custom);
    EXPECT_EQ(Prices::current().asOf, "2026-08-27");

    feed.adopt(feedWith(block(opusRow)), now);
    EXPECT_EQ(Prices::price("opus"), (Prices::TokenPrice{6, 30, 0, 7.5, 12}));
    EXPECT_EQ(Prices::current().asOf, "2026-09-01");

    EXPECT_EQ(settings.setFlatRate(2.5), Prices::flatBook(2.5));
    EXPECT_EQ(Prices::price("gpt"), (Prices::TokenPrice{2.5, 2.5, 2.5, 2.5, 2.5}));
    settings.setFlatRate({});
    settings.setOverride(-1.0, "opus.input");
    settings.setOverride(1.0, "opus.thinking");
    settings.setOverride({}, "sonnet.output");
    EXPECT_FALSE(Prices::price("sonnet"));
    EXPECT_EQ(Prices::price("opus")->input, 6);

    settings.reset();
    EXPECT_EQ(originInUse(), OriginKind::fetched);
    EXPECT_FALSE(defaults.isStored("priceOverrides") || defaults.isStored("priceFlatRate"));
}

TEST_F(PricesInUse, areReadFromTheSettings) {
    defaults.set("priceOverrides", R"({"opus.input":0.1,"opus.output":-1,"opus.x":1,"a":2,)"
                                   R"("haiku.input":"1","haiku.output":7})");
    defaults.set("priceFlatRate", "0.30000000000000004");
    settings.load();
    EXPECT_EQ(settings.custom(),
              (PriceSettings::Overrides{{"opus.input", 0.1}, {"haiku.output", 7}}))
        << "a store may keep text only";
    EXPECT_EQ(settings.flat(), 0.30000000000000004);
    for (const Json& none : {Json("3,5"), Json(10'001), Json(-1), Json("1e999"), Json(true)}) {
        defaults.set("priceFlatRate", none);
        settings.load();
        EXPECT_FALSE(settings.flat()) << none;
    }
    EXPECT_EQ(Prices::price("opus")->input, 0.1);
}

}  // namespace
}  // namespace fleetwise::testing
