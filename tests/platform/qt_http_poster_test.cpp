// Deliveries to servers in the same process.

#include "platform/qt_http_poster.h"

#include "foundation/text.h"
#include "platform/event_loop.h"
#include "platform/https_server.h"
#include "reactions/webhook.h"

#include <QHostInfo>
#include <gmock/gmock.h>

#include <optional>
#include <set>

namespace fleetwise::testing {
namespace {

using ::testing::UnorderedElementsAre;

/// What the resolver of a test answers.
QtHttpPoster::Resolver answering(const std::vector<const char*>& addresses) {
    QHostInfo found;
    QList<QHostAddress> list;
    for (const char* address : addresses)
        list.append(QHostAddress(QLatin1String(address)));
    found.setAddresses(list);
    return [found](const QString&, QObject*, const std::function<void(const QHostInfo&)>& tell) {
        tell(found);
    };
}

class QtHttpPosterTest : public EventLoopTest {
protected:
    using Result = HttpPoster::Result;

    Result post(const HttpPost& request, const QtHttpPoster::Options& options) {
        QtHttpPoster poster(options);
        std::optional<Result> result;
        poster.post(request, [&](Result got) { result = std::move(got); });
        EXPECT_FALSE(result) << "not before post returns";
        EXPECT_TRUE(waitUntil([&] { return result.has_value(); }));
        return result.value_or(tl::unexpected(std::string("no answer")));
    }
    Result post(const std::string& address, const QtHttpPoster::Options& options) {
        return post(delivery(address), options);
    }
    Result post(const std::string& address) { return post(address, trusting); }

    static HttpPost delivery(const std::string& address, Seconds timeLimit = Seconds(5)) {
        return {.address = address,
                .headers = {{"Content-Type", "application/json"}},
                .body = "{}",
                .timeLimit = timeLimit};
    }

    static HttpServer::Answer statusOfPath() {
        return [](QSslSocket& client, const std::string& request) {
            HttpServer::send(client, request.substr(6, 3) + " Reason\r\nLocation: /200", "body");
        };
    }

    /// A name of the own network that leads to the server.
    static std::string named(const HttpServer& server, const std::string& host) {
        const std::string address = server.address("/204");
        return "http://" + host + address.substr(address.rfind(':'));
    }

    const ServerIdentity identity = ServerIdentity::made();
    const QtHttpPoster::Options trusting{.furtherAuthorities = identity.certificate,
                                         .resolver = {}};
    const Result late = tl::unexpected(std::string("Der Server hat nicht rechtzeitig geantwortet"));
    const Result unreachable = tl::unexpected(std::string("Der Server ist nicht erreichbar"));
    const Result abroad =
        tl::unexpected(Webhook::message(Webhook::AddressError::unencryptedAbroad));
};

TEST_F(QtHttpPosterTest, bringsTheBodyAndTellsNothingOfTheUser) {
    std::string asked;
    const auto answer = [&](QSslSocket& client, const std::string& request) {
        asked = request;
        HttpServer::send(client, "204 No Content\r\nSet-Cookie: a=b");
    };
    const HttpServer plain(answer);
    const HttpsServer encrypting(identity, answer);
    const std::string port = plain.address("").substr(std::string("http://127.0.0.1:").size());
    const struct {
        std::string address;
        std::string host;
    } rows[] = {
        {encrypting.address("/hook?a=%20b"), encrypting.address("").substr(8)},
        {plain.address("/hook?a=%20b"), plain.address("").substr(7)},
        {"http://home.local:" + port + "/hook?a=%20b", "home.local:" + port},
    };
    for (const auto& row : rows) {
        HttpPost request{
            .address = row.address,
            .headers = {{"Content-Type", "application/json"}, {"User-Agent", "Fleetwise/1.2"}},
            .body = R"({"a":"ü"})"};
        request.address.insert(request.address.find("//") + 2, "me:s%40y@");
        auto options = trusting;
        options.resolver = answering({"127.0.0.1"});
        EXPECT_EQ(post(request, options), 204);
        std::set<std::string> lines;
        forEachLine(asked, [&](std::string_view line) { lines.emplace(trimmed(line)); });
        EXPECT_THAT(lines,
                    UnorderedElementsAre(
                        "POST /hook?a=%20b HTTP/1.1", "Host: " + row.host,
                        "Content-Type: application/json", "User-Agent: Fleetwise/1.2",
                        "Authorization: Basic bWU6c0B5", "Content-Length: 10", "Accept-Language: *",
                        "Accept-Encoding: identity", "Connection: Keep-Alive", "", R"({"a":"ü"})"))
            << row.address;
    }
}

TEST_F(QtHttpPosterTest, tellsTheStatusWhateverItIs) {
    const HttpServer plain(statusOfPath());
    const HttpsServer encrypting(identity, statusOfPath());
    for (const int status : {200, 302, 307, 401, 500}) {
        const std::string path = "/" + std::to_string(status);
        EXPECT_EQ(post(plain.address(path)), status);
        EXPECT_EQ(post(encrypting.address(path)), status);
    }
    EXPECT_EQ(plain.connections(), 5) << "redirects are not followed";
}

TEST_F(QtHttpPosterTest, doesNotReadOnForLong) {
    const std::string piece(64 << 10, 'x');
    const HttpServer endless([&](QSslSocket& client, const std::string&) {
        const auto write = [&](qint64) {
            client.write(piece.data(), static_cast<qint64>(piece.size()));
        };
        QObject::connect(&client, &QSslSocket::bytesWritten, &client, write);
        client.write("HTTP/1.1 200 OK\r\n\r\n");
    });
    EXPECT_EQ(post(endless.address()), 200);
    const HttpServer stalling([](QSslSocket& client, const std::string&) {
        client.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nx");
    });
    EXPECT_EQ(post(delivery(stalling.address(), Seconds(3)), trusting), 200);
}

TEST_F(QtHttpPosterTest, saysWhyNoAnswerCame) {
    const HttpServer silent([](QSslSocket&, const std::string&) {});
    const HttpServer closing(
        [](QSslSocket& client, const std::string&) { client.disconnectFromHost(); });
    const HttpPost hasty = delivery(silent.address(), Seconds(0.2));
    EXPECT_EQ(post(hasty, trusting), late);
    EXPECT_EQ(post(closing.address()), unreachable);
    EXPECT_EQ(closing.connections(), 1) << "nothing is sent twice";
    std::string closed;
    {
        const HttpServer gone(statusOfPath());
        closed = gone.address();
    }
    EXPECT_EQ(post(closed), unreachable);

    const HttpsServer impostor(ServerIdentity::made("DNS:example.org"), statusOfPath());
    const Result insecure = tl::unexpected(std::string("Keine sichere Verbindung zum Server"));
    EXPECT_EQ(post(impostor.address("/200")), insecure);

    QtHttpPoster(trusting).post(
        hasty, [](const Result&) { ADD_FAILURE() << "called although the poster is gone"; });
    letPass(300);
}

TEST_F(QtHttpPosterTest, staysUnencryptedOnlyInTheOwnNetwork) {
    const HttpServer server(statusOfPath());
    const std::vector<const char*> foreign[] = {
        {"93.184.216.34"}, {"127.0.0.1", "8.8.8.8"}, {"172.32.0.1"},      {"0.0.0.0"},
        {"2001:db8::1"},   {"::ffff:8.8.8.8"},       {"127.0.0.1", "::"}, {"169.253.0.1"}};
    for (const auto& addresses : foreign) {
        const QtHttpPoster::Options options{.furtherAuthorities = {},
                                            .resolver = answering(addresses)};
        EXPECT_EQ(post(named(server, "home.local"), options), abroad) << addresses.back();
    }
    EXPECT_EQ(post("http://8.8.8.8/"), abroad);
    EXPECT_EQ(post("http://[2001:db8::1]/"), abroad);
    EXPECT_EQ(post("ftp://127.0.0.1/"), abroad);
    const Result incomplete = tl::unexpected(Webhook::message(Webhook::AddressError::incomplete));
    EXPECT_EQ(post("http:///204"), incomplete);
    EXPECT_EQ(post("not an address"), incomplete);
    EXPECT_EQ(server.connections(), 0);

    const auto resolved = [&](const std::vector<const char*>& addresses) {
        return post(named(server, "home.local"),
                    {.furtherAuthorities = {}, .resolver = answering(addresses)});
    };
    EXPECT_EQ(resolved({"::1", "127.0.0.1"}), 204) << "the second where the first does not answer";
    EXPECT_EQ(resolved({"::ffff:127.0.0.1"}), 204);
    EXPECT_EQ(resolved({}), unreachable);
    EXPECT_EQ(post(named(server, "localhost")), 204) << "by the system's resolver";
}

TEST_F(QtHttpPosterTest, doesNotWaitForTheResolver) {
    const HttpServer server(statusOfPath());
    std::function<void(const QHostInfo&)> tell;
    const auto keep = [&](const QString&, QObject*, std::function<void(const QHostInfo&)> found) {
        tell = std::move(found);
    };
    QtHttpPoster poster({.furtherAuthorities = {}, .resolver = keep});
    std::vector<Result> results;
    poster.post(delivery(named(server, "home.local"), Seconds(0.05)),
                [&](Result got) { results.push_back(std::move(got)); });
    ASSERT_TRUE(waitUntil([&] { return !results.empty(); }));
    EXPECT_EQ(results, std::vector{late});
    EXPECT_EQ(server.connections(), 0);
}

}  // namespace
}  // namespace fleetwise::testing
