#pragma once

#include <QSslServer>
#include <QSslSocket>

#include <functional>
#include <string>

namespace fleetwise::testing {

/// A certificate that vouches for itself, with its key; both in PEM.
struct ServerIdentity {
    std::string certificate;
    std::string key;

    static ServerIdentity made(const char* names = "DNS:localhost,IP:127.0.0.1");
};

/// A server over HTTPS on this machine, in the loop of this thread.
class HttpsServer {
public:
    /// Answers a request, which it gets whole.
    using Answer = std::function<void(QSslSocket& client, const std::string& request)>;

    HttpsServer(const ServerIdentity& identity, Answer givenAnswer);

    std::string address(const std::string& path = "/feed.xml") const;

    /// An answer of this status line and these headers, with the body's length, after which the
    /// connection ends.
    static void send(QSslSocket& client, const std::string& head, const std::string& body = "");

private:
    void serve(QSslSocket& client);

    Answer answer;
    QSslServer server;
};

}  // namespace fleetwise::testing
