// Downloads from a server over HTTPS in the same process.

#include "platform/qt_feed_download.h"

#include "foundation/text.h"
#include "platform/event_loop.h"
#include "platform/https_server.h"
#include "platform/qt_main_loop.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <optional>
#include <set>

namespace fleetwise::testing {
namespace {

using ::testing::AllOf;
using ::testing::Gt;
using ::testing::Lt;
using ::testing::UnorderedElementsAre;

class QtFeedDownloadTest : public EventLoopTest {
protected:
    using Result = FeedDownload::Result;

    Result fetch(const std::string& address, QtFeedDownload::Options options) {
        QtFeedDownload download("1.2.3", std::move(options));
        std::optional<Result> result;
        download.get(address, [&](Result got) { result = std::move(got); });
        EXPECT_FALSE(result) << "not before get returns";
        EXPECT_TRUE(waitUntil([&] { return result.has_value(); }));
        return result.value_or(tl::unexpected(std::string("no answer")));
    }
    Result fetch(const std::string& address) { return fetch(address, trusting); }

    const ServerIdentity identity = ServerIdentity::made();
    const QtFeedDownload::Options trusting{.furtherAuthorities = identity.certificate};
};

TEST_F(QtFeedDownloadTest, bringsTheBytesAndTellsNothingOfTheUser) {
    std::string asked;
    std::string body("<rss/>\0\xFF", 8);
    const HttpsServer server(identity, [&](QSslSocket& client, const std::string& request) {
        asked = request;
        HttpsServer::send(client, "200 OK\r\nSet-Cookie: a=b", body);
    });
    EXPECT_EQ(fetch(server.address()), body);
    std::set<std::string> lines;
    forEachLine(asked, [&](std::string_view line) { lines.emplace(trimmed(line)); });
    const std::string host = server.address("").substr(std::string("https://").size());
    EXPECT_THAT(lines, UnorderedElementsAre("GET /feed.xml HTTP/1.1", "Host: " + host,
                                            "User-Agent: Fleetwise/1.2.3", "Accept-Language: *",
                                            "Accept-Encoding: identity", "Cache-Control: no-cache",
                                            "Pragma: no-cache", "Connection: Keep-Alive", ""));
    body = std::string(maximumUpdateFeedBytes, 'x');
    EXPECT_EQ(fetch(server.address()), body) << "as large as a feed may be";
}

TEST_F(QtFeedDownloadTest, trustsOnlyCertificatesThatAreVouchedFor) {
    int answers = 0;
    const auto answer = [&](QSslSocket& client, const std::string&) {
        ++answers;
        HttpsServer::send(client, "200 OK", "x");
    };
    const HttpsServer server(identity, answer);
    const auto refused = tl::unexpected(std::string("Keine sichere Verbindung zum Server"));
    EXPECT_EQ(fetch(server.address(), {}), refused);
    EXPECT_EQ(fetch("http" + server.address().substr(5)), refused);
    EXPECT_EQ(fetch("file:///etc/hostname"), refused);

    const ServerIdentity another = ServerIdentity::made("DNS:example.org");
    const HttpsServer impostor(another, answer);
    EXPECT_EQ(fetch(impostor.address(), {.furtherAuthorities = another.certificate}), refused);
    EXPECT_EQ(answers, 0);
}

TEST_F(QtFeedDownloadTest, breaksOffWhatIsTooLarge) {
    constexpr std::size_t wholeBody = 50'000'000;
    const std::string piece(64 << 10, 'x');
    std::size_t given = 0;
    std::size_t sent = 0;  // by the socket, encrypted
    std::string head;
    bool sendsBody = true;
    const HttpsServer server(identity, [&](QSslSocket& client, const std::string&) {
        given = sent = 0;
        const auto giveMore = [&](qint64 bytes) {
            sent += static_cast<std::size_t>(bytes);
            if (!sendsBody || given >= wholeBody || client.encryptedBytesToWrite() > 0) return;
            client.write(piece.data(), static_cast<qint64>(piece.size()));
            given += piece.size();
        };
        QObject::connect(&client, &QSslSocket::encryptedBytesWritten, &client, giveMore);
        client.write(head.data(), static_cast<qint64>(head.size()));
    });
    const auto refused = tl::unexpected(std::string("Die Antwort des Servers ist zu groß"));
    head = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n";
    EXPECT_EQ(fetch(server.address()), refused);
    EXPECT_THAT(sent, AllOf(Gt(maximumUpdateFeedBytes), Lt(wholeBody / 2)));
    head = "HTTP/1.1 200 OK\r\nContent-Length: 50000000\r\n\r\n";
    sendsBody = false;
    EXPECT_EQ(fetch(server.address()), refused) << "before the body is there";
}

TEST_F(QtFeedDownloadTest, followsFewRedirectsAndOnlyToHttps) {
    const HttpsServer* self = nullptr;
    const HttpsServer server(identity, [&](QSslSocket& client, const std::string& request) {
        const auto leadTo = [&](const std::string& address) {
            HttpsServer::send(client, "302 Found\r\nLocation: " + address, "moved");
        };
        if (request.starts_with("GET /insecure ")) return leadTo("http://127.0.0.1:9/feed.xml");
        const char hops = request[std::string("GET /").size()];
        if (hops == '0') return HttpsServer::send(client, "200 OK", "arrived");
        leadTo(self->address("/" + std::string(1, static_cast<char>(hops - 1))));
    });
    self = &server;
    const auto refused = tl::unexpected(std::string("Der Server leitet unsicher oder zu oft um"));
    EXPECT_EQ(fetch(server.address("/3")), "arrived");
    EXPECT_EQ(fetch(server.address("/4")), refused);
    EXPECT_EQ(fetch(server.address("/insecure")), refused);
}

TEST_F(QtFeedDownloadTest, saysWhyNothingCame) {
    int closedPort = 0;
    const HttpsServer server(identity, [&](QSslSocket& client, const std::string& request) {
        if (request.starts_with("GET /silent ")) return;
        if (request.starts_with("GET /torn ")) {
            client.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nx");
            return client.disconnectFromHost();
        }
        HttpsServer::send(client, request.substr(5, request.find(" HTTP") - 5) + " Reason", "why");
    });
    {
        QTcpServer unused;
        ASSERT_TRUE(unused.listen(QHostAddress::LocalHost));
        closedPort = unused.serverPort();
    }
    QtFeedDownload::Options hasty = trusting;
    hasty.timeLimit = Seconds(0.2);
    const std::pair<std::string, std::string> rows[] = {
        {server.address("/404"), "Der Server meldet den Fehler 404"},
        {server.address("/503"), "Der Server meldet den Fehler 503"},
        {server.address("/204"), "Der Server schickt nichts"},
        {server.address("/torn"), "Der Server ist nicht erreichbar"},
        {"https://127.0.0.1:" + std::to_string(closedPort), "Der Server ist nicht erreichbar"},
    };
    for (const auto& [address, why] : rows)
        EXPECT_EQ(fetch(address), tl::unexpected(why)) << address;
    EXPECT_EQ(fetch(server.address("/silent"), hasty),
              tl::unexpected(std::string("Der Server hat nicht rechtzeitig geantwortet")));
    QtFeedDownload(std::string("1"), trusting).get(server.address("/silent"), [](const Result&) {
        ADD_FAILURE() << "called although the download is gone";
    });
    letPass(50);
}

TEST_F(QtFeedDownloadTest, bringsPricesIntoUse) {
    const HttpsServer server(identity, [](QSslSocket& client, const std::string&) {
        HttpsServer::send(
            client, "200 OK",
            R"(<rss><item><enclosure version="2.0"/></item><fleetwise:preise>{"stand":"2026-10-01",)"
            R"("fassung":1,"modelle":{"sonnet":{"eingabe":3,"ausgabe":15,"lesen":0.3,)"
            R"("schreiben_5min":3.75,"schreiben_1h":6}}}</fleetwise:preise></rss>)");
    });
    const TemporaryDirectory home;
    const std::string file = home.at("prices.json");
    InMemoryUserDefaults defaults;
    PriceSettings settings(defaults, file, {});
    PriceFeed prices(file, settings);
    QtMainLoop loop;
    QtFeedDownload download("1.2.3", trusting);
    FeedUpdate update(loop, download, prices, server.address(), "1.2.3");
    bool isDone = false;
    update.start([&] { isDone = true; });
    ASSERT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_FALSE(update.problem()) << *update.problem();
    EXPECT_EQ(update.newerVersion(), "2.0");
    EXPECT_EQ(Prices::current().origin.kind, Prices::Origin::Kind::fetched);
    EXPECT_EQ(Prices::price("claude-sonnet-4-6")->cacheRead, 0.3);
    EXPECT_EQ(parsePriceBlock(contentsOf(file)), Prices::current());
    Prices::install(Prices::Book::builtIn());
}

}  // namespace
}  // namespace fleetwise::testing
