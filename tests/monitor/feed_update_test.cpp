#include "monitor/feed_update.h"

#include "foundation/version.h"
#include "foundation/virtual_main_loop.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

constexpr Seconds hour{3600};

/// Keeps what is asked for until the test answers.
class PendingDownload final : public FeedDownload {
public:
    void get(const std::string& address, std::function<void(Result)> done) override {
        addresses.push_back(address);
        answer = std::move(done);
    }
    std::vector<std::string> addresses;
    std::function<void(Result)> answer;
};

class FeedUpdateTest : public ::testing::Test {
protected:
    ~FeedUpdateTest() override { Prices::install(Prices::Book::builtIn()); }

    void start(const std::string& address = "https://example.org/feed.xml") {
        update = std::make_unique<FeedUpdate>(loop, download, prices, address, "0.9.1");
        update->start([this] { ++changes; });
    }
    void answer(FeedDownload::Result result) {
        download.answer(std::move(result));
        loop.finishBackground();
    }
    static std::string feedOf(const std::string& version) {
        return "<rss><item><enclosure version='" + version + "'/></item></rss>";
    }

    TemporaryDirectory home;
    InMemoryUserDefaults defaults;
    PriceSettings settings{defaults, home.at("prices.json"), {}};
    PriceFeed prices{home.at("prices.json"), settings};
    VirtualMainLoop loop{dateFromSeconds(1'800'000'000)};
    PendingDownload download;
    std::unique_ptr<FeedUpdate> update;
    int changes = 0;
};

TEST_F(FeedUpdateTest, looksOnceADayAndSoonerAfterAFailure) {
    start();
    const Date began = loop.now();
    EXPECT_EQ(download.addresses, std::vector<std::string>{"https://example.org/feed.xml"});
    loop.advance(24 * hour);
    EXPECT_EQ(download.addresses.size(), 1U) << "one at a time";

    answer(tl::unexpected(std::string("nicht erreichbar")));
    EXPECT_EQ(update->problem(), "nicht erreichbar");
    EXPECT_FALSE(update->lastChecked());
    loop.advance(hour);
    ASSERT_EQ(download.addresses.size(), 2U);

    answer(feedOf("0.10.0"));
    EXPECT_FALSE(update->problem());
    EXPECT_EQ(update->newerVersion(), "0.10.0");
    EXPECT_EQ(update->lastChecked(), began + 25 * hour);
    loop.advance(23 * hour);
    EXPECT_EQ(download.addresses.size(), 2U);
    loop.advance(hour);
    ASSERT_EQ(download.addresses.size(), 3U);

    answer(std::string("<html>"));
    EXPECT_EQ(update->problem(), "Update-Feed nicht lesbar");
    EXPECT_EQ(update->newerVersion(), "0.10.0") << "what was known stays";
    loop.advance(24 * hour);
    answer(feedOf("0.9.1"));
    EXPECT_FALSE(update->newerVersion());
    EXPECT_EQ(changes, 4);
}

TEST_F(FeedUpdateTest, takesOnlyHigherVersionsForNewer) {
    const std::pair<const char*, bool> rows[] = {{"0.9.1", false},
                                                 {"0.9.1.0", false},
                                                 {"0.9.1+7", false},
                                                 {"0.9.2-beta", true},
                                                 {"0.9.1-rc", false},
                                                 {"0.9", false},
                                                 {"0.10", true},
                                                 {"1", true},
                                                 {"", false},
                                                 {"1.", false},
                                                 {"99999999999999999999", false},
                                                 {"v2", false}};
    for (const auto& [version, isNewer] : rows) {
        start();
        answer(feedOf(version));
        EXPECT_EQ(update->newerVersion().has_value(), isNewer) << version;
    }
    const auto parsed = [](const char* text) { return *Version::parse(text); };
    EXPECT_LT(parsed("1.0-beta.2"), parsed("1.0-beta.10"));
    EXPECT_LT(parsed("1.0-beta.2"), parsed("1-beta.x"));
    EXPECT_LT(parsed("1.0-beta"), parsed("1.0-beta.2"));
}

TEST_F(FeedUpdateTest, isOffWithoutASecureAddress) {
    start("");
    EXPECT_FALSE(update->problem());
    for (const char* address : {"http://example.org", "file:///feed.xml", "example.org"}) {
        start(address);
        EXPECT_TRUE(update->problem()) << address;
    }
    loop.advance(48 * hour);
    EXPECT_TRUE(download.addresses.empty());
}

TEST_F(FeedUpdateTest, mayEndWhileADownloadOrItsReadingIsUnderWay) {
    start();
    download.answer(feedOf("1.0"));
    start();
    loop.finishBackground();
    EXPECT_FALSE(update->newerVersion());
    update.reset();
    download.answer(feedOf("1.0"));
    EXPECT_EQ(loop.backgroundJobs(), 0U);
    EXPECT_EQ(changes, 0);
}

}  // namespace
}  // namespace fleetwise::testing
