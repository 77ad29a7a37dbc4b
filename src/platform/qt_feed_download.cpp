#include "platform/qt_feed_download.h"

#include "localisation/localisation.h"
#include "platform/qt_network_request.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <chrono>
#include <optional>
#include <utility>

namespace fleetwise {

namespace {

constexpr int maximumRedirects = 3;

QNetworkRequest requestFor(const std::string& address, const std::string& version,
                           const QtFeedDownload::Options& options) {
    QUrl url(QString::fromStdString(address));
    url.setUserInfo({});
    QNetworkRequest request = discreetRequest(url, options.furtherAuthorities);
    request.setMaximumRedirectsAllowed(maximumRedirects);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QString::fromStdString("Fleetwise/" + version));
    return request;
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
        connect(&deadline, &QTimer::timeout, this, [this] { giveUp(answerIsLate()); });
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
            return tl::unexpected(networkFailure(reply->error()));
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
    keepOpenSslToTheEnd();
}

QtFeedDownload::~QtFeedDownload() = default;

void QtFeedDownload::get(const std::string& address, std::function<void(Result)> done) {
    const auto request = requestFor(address, version, options);
    if (request.url().scheme() != QLatin1String("https")) {
        QTimer::singleShot(0, transfers.get(), [done = std::move(done)] {
            done(tl::unexpected(networkFailure(QNetworkReply::SslHandshakeFailedError)));
        });
        return;
    }
    // Its parent owns it.
    new Transfer(request, options.timeLimit, std::move(done), transfers.get());
}

}  // namespace fleetwise
