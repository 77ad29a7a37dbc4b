#include "platform/https_server.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <gtest/gtest.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <string_view>
#include <utility>

/// Read by LeakSanitizer where it is built in. Qt 6.4 at times leaves the certificates of a refused
/// handshake behind.
extern "C" const char* __lsan_default_suppressions() {  // NOLINT: the name is LeakSanitizer's
    return "leak:libcrypto.so";
}

namespace fleetwise::testing {

namespace {

/// Before anything else uses OpenSSL; keepOpenSslToTheEnd says what for.
[[maybe_unused]] const int isKeptToTheEnd = OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);

using Memory = std::unique_ptr<BIO, decltype(&BIO_free)>;

std::string contentsOf(BIO* memory) {
    std::string text(BIO_ctrl_pending(memory), '\0');
    BIO_read(memory, text.data(), static_cast<int>(text.size()));
    return text;
}

void addExtension(X509* certificate, int kind, const char* value) {
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value);
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

void describe(X509* certificate, const char* names) {
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
    X509_NAME* name = X509_get_subject_name(certificate);
    const unsigned char host[] = "localhost";
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, host, -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    addExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate, NID_subject_alt_name, names);
}

/// Has sockets of the encrypting kind that encrypt nothing.
class PlainServer final : public QTcpServer {
protected:
    void incomingConnection(qintptr descriptor) override {
        auto* const client = new QSslSocket(this);
        client->setSocketDescriptor(descriptor);
        addPendingConnection(client);
    }
};

std::unique_ptr<QTcpServer> encryptingServer(const ServerIdentity& identity) {
    auto configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(
        QSslCertificate(QByteArray::fromStdString(identity.certificate)));
    configuration.setPrivateKey(QSslKey(QByteArray::fromStdString(identity.key), QSsl::Ec));
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(configuration);
    return server;
}

/// Whether head and body are there.
bool isWhole(const std::string& request) {
    constexpr std::string_view headEnd = "\r\n\r\n";
    constexpr std::string_view lengthName = "\r\nContent-Length: ";
    const auto end = request.find(headEnd);
    if (end == std::string::npos) return false;
    const auto length = request.find(lengthName);
    const std::size_t bodyLength =
        length < end ? std::stoul(request.substr(length + lengthName.size())) : 0;
    return request.size() >= end + headEnd.size() + bodyLength;
}

}  // namespace

ServerIdentity ServerIdentity::made(const char* names) {
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"), &EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), &X509_free);
    describe(certificate.get(), names);
    X509_set_pubkey(certificate.get(), key.get());
    EXPECT_GT(X509_sign(certificate.get(), key.get(), EVP_sha256()), 0);
    const Memory certificateText(BIO_new(BIO_s_mem()), &BIO_free);
    const Memory keyText(BIO_new(BIO_s_mem()), &BIO_free);
    PEM_write_bio_X509(certificateText.get(), certificate.get());
    PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    return {contentsOf(certificateText.get()), contentsOf(keyText.get())};
}

HttpServer::HttpServer(std::string givenScheme, std::unique_ptr<QTcpServer> givenServer,
                       Answer givenAnswer)
    : scheme(std::move(givenScheme)),
      answer(std::move(givenAnswer)),
      server(std::move(givenServer)) {
    QObject::connect(server.get(), &QTcpServer::pendingConnectionAvailable, server.get(), [this] {
        auto* client = qobject_cast<QSslSocket*>(server->nextPendingConnection());
        if (client != nullptr) serve(*client);
    });
    EXPECT_TRUE(server->listen(QHostAddress::LocalHost));
}

HttpServer::HttpServer(Answer givenAnswer)
    : HttpServer("http", std::make_unique<PlainServer>(), std::move(givenAnswer)) {}

HttpsServer::HttpsServer(const ServerIdentity& identity, Answer givenAnswer)
    : HttpServer("https", encryptingServer(identity), std::move(givenAnswer)) {}

std::string HttpServer::address(const std::string& path) const {
    return scheme + "://127.0.0.1:" + std::to_string(server->serverPort()) + path;
}

void HttpServer::serve(QSslSocket& client) {
    ++accepted;
    const auto request = std::make_shared<std::string>();
    const auto read = [this, request, &client] {
        *request += client.readAll().toStdString();
        if (isWhole(*request)) answer(client, std::exchange(*request, {}));
    };
    QObject::connect(&client, &QSslSocket::readyRead, &client, read);
    read();
}

void HttpServer::send(QSslSocket& client, const std::string& head, const std::string& body) {
    const std::string answer = "HTTP/1.1 " + head +
                               "\r\nContent-Length: " + std::to_string(body.size()) +
                               "\r\nConnection: close\r\n\r\n" + body;
    client.write(answer.data(), static_cast<qint64>(answer.size()));
    client.disconnectFromHost();
}

}  // namespace fleetwise::testing
