#include "platform/qt_feed_download.h"

#include "localisation/localisation.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QTimer>
#include <openssl/crypto.h>

#include <chrono>
#include <optional>
#include <utility>

namespace fleetwise {

namespace {

constexpr int maximumRedirects = 3;

QSslConfiguration sslConfiguration(const std::string& furtherAuthorities) {
    auto configuration = QSslConfiguration::defaultConfiguration();
    if (!furtherAuthorities.empty()) {
        configuration.addCaCertificates(
            QSslCertificate::fromData(QByteArray::fromStdString(furtherAuthorities)));
    }
    return configuration;
}

QNetworkRequest requestFor(const std::string& address, const std::string& version,
                           const QtFeedDownload::Options& options) {
    QUrl url(QString::fromStdString(address));
    url.setUserInfo({});
    QNetworkRequest request(url);
    request.setSslConfiguration(sslConfiguration(options.furtherAuthorities));
    request.setMaximumRedirectsAllowed(maximumRedirects);
    using Request = QNetworkRequest;
    request.setAttribute(Request::RedirectPolicyAttribute, Request::NoLessSafeRedirectPolicy);
    request.setAttribute(Request::CookieLoadControlAttribute, Request::Manual);
    request.setAttribute(Request::CookieSaveControlAttribute, Request::Manual);
    request.setAttribute(Request::AuthenticationReuseAttribute, Request::Manual);
    request.setAttribute(Request::CacheLoadControlAttribute, Request::AlwaysNetwork);
    request.setAttribute(Request::CacheSaveControlAttribute, false);
    request.setHeader(Request::UserAgentHeader, QString::fromStdString("Fleetwise/" + version));
    // Qt would name the user's language, and would unpack without a limit of ours.
    request.setRawHeader("Accept-Language", "*");
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

std::string explained(QNetworkReply::NetworkError error) {
    switch (error) {
        case QNetworkReply::SslHandshakeFailedError:
            return localised("Keine sichere Verbindung zum Server"_text);
        case QNetworkReply::InsecureRedirectError:
        case QNetworkReply::TooManyRedirectsError:
            return localised("Der Server leitet unsicher oder zu oft um"_text);
        default:
            return localised("Der Server ist nicht erreichbar"_text);
    }
}

}  // namespace

/// One download; ends itself.
class QtFeedDownload::Transfer final : public QObject {
public:
    Transfer(const QNetworkRequest& request, Seconds timeLimit,
             std::function<void(Result)> whenDone, QObject* parent)
        : QObject(parent), done(std::move(whenDone)), reply(manager.get(request)) {
        connect(reply, &QNetworkReply::metaDataChanged, this, [this] { refuseLargeAnswer(); });
        connect(reply, &QNetworkReply::readyRead, this, [this] { take(); });
        connect(reply, &QNetworkReply::finished, this, [this] { finish(); });
        connect(&deadline, &QTimer::timeout, this,
                [this] { giveUp(localised("Der Server hat nicht rechtzeitig geantwortet"_text)); });
        deadline.setSingleShot(true);
        deadline.start(std::chrono::ceil<std::chrono::milliseconds>(timeLimit));
    }

    // The reply still has something to say when the manager takes it along.
    ~Transfer() override { reply->disconnect(this); }

private:
    void refuseLargeAnswer() {
        const auto length = reply->header(QNetworkRequest::ContentLengthHeader).toULongLong();
        if (length > maximumUpdateFeedBytes) giveUp(tooLarge());
    }

    void take() {
        body += reply->readAll().toStdString();
        if (body.size() > maximumUpdateFeedBytes) giveUp(tooLarge());
    }

    static std::string tooLarge() { return localised("Die Antwort des Servers ist zu groß"_text); }

    void giveUp(std::string why) {
        if (failure) return;
        failure = std::move(why);
        reply->abort();
    }

    void finish() {
        deadline.stop();
        deleteLater();
        std::exchange(done, {})(result());
    }

    Result result() {
        if (failure) return tl::unexpected(*failure);
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (status >= 400) {
            return tl::unexpected(localisedFormat("Der Server meldet den Fehler %d"_text, status));
        }
        if (reply->error() != QNetworkReply::NoError) {
            return tl::unexpected(explained(reply->error()));
        }
        if (status != 200) {
            return tl::unexpected(localised("Der Server schickt nichts"_text));
        }
        return std::move(body);
    }

    std::function<void(Result)> done;
    QNetworkAccessManager manager;
    QNetworkReply* reply;
    QTimer deadline;
    std::string body;
    std::optional<std::string> failure;
};

QtFeedDownload::QtFeedDownload(std::string programVersion)
    : QtFeedDownload(std::move(programVersion), {}) {}

QtFeedDownload::QtFeedDownload(std::string programVersion, Options givenOptions)
    : version(std::move(programVersion)),
      options(std::move(givenOptions)),
      transfers(std::make_unique<QObject>()) {
    // At the end of the program OpenSSL would free what belongs to Qt's thread for transfers, which
    // may be about to free it itself. That works only before OpenSSL is first used.
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
}

QtFeedDownload::~QtFeedDownload() = default;

void QtFeedDownload::get(const std::string& address, std::function<void(Result)> done) {
    const auto request = requestFor(address, version, options);
    if (request.url().scheme() != QLatin1String("https")) {
        QTimer::singleShot(0, transfers.get(), [done = std::move(done)] {
            done(tl::unexpected(localised("Keine sichere Verbindung zum Server"_text)));
        });
        return;
    }
    // Its parent owns it.
    new Transfer(request, options.timeLimit, std::move(done), transfers.get());
}

}  // namespace fleetwise
