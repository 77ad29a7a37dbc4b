#pragma once

#include <QSslSocket>
#include <QTcpServer>

#include <functional>
#include <memory>
#include <string>

namespace fleetwise::testing {

/// A certificate that vouches for itself, with its key; both in PEM.
struct ServerIdentity {
    std::string certificate;
    std::string key;

    static ServerIdentity made(const char* names = "DNS:localhost,IP:127.0.0.1");
};

/// A server over HTTP on this machine, in the loop of this thread.
class HttpServer {
public:
    /// Answers a request, which it gets whole. Without HTTPS the socket is a plain one.
    using Answer = std::function<void(QSslSocket& client, const std::string& request)>;

    explicit HttpServer(Answer givenAnswer);

    std::string address(const std::string& path = "/feed.xml") const;

    /// How many clients have come so far.
    int connections() const { return accepted; }

    /// An answer of this status line and these headers, with the body's length, after which the
    /// connection ends.
    static void send(QSslSocket& client, const std::string& head, const std::string& body = "");

protected:
    HttpServer(std::string givenScheme, std::unique_ptr<QTcpServer> givenServer,
               Answer givenAnswer);

private:
    void serve(QSslSocket& client);

    std::string scheme;
    Answer answer;
    int accepted = 0;
    std::unique_ptr<QTcpServer> server;
};

/// The same over HTTPS.
class HttpsServer final : public HttpServer {
public:
    HttpsServer(const ServerIdentity& identity, Answer givenAnswer);
};

}  // namespace fleetwise::testing
