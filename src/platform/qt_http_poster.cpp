// A name of the own network may be made to lead elsewhere (DNS rebinding). So for plain http the
// name is looked up here, every address is judged, and the connection goes to one of these.

#include "platform/qt_http_poster.h"

#include "platform/qt_network_request.h"
#include "reactions/webhook.h"

#include <QHostAddress>
#include <QHostInfo>
#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace fleetwise {

namespace {

constexpr qint64 readLimit = 4096;

bool isOfOwnNetwork(const QHostAddress& address) {
    struct Subnet {
        const char* start;
        int bits;
    };
    constexpr Subnet subnets[] = {{"10.0.0.0", 8},  {"172.16.0.0", 12},  {"192.168.0.0", 16},
                                  {"127.0.0.0", 8}, {"169.254.0.0", 16}, {"::1", 128},
                                  {"fe80::", 10},   {"fc00::", 7}};
    bool isFourthVersion = false;
    const QHostAddress plain(address.toIPv4Address(&isFourthVersion));
    const QHostAddress& judged = isFourthVersion ? plain : address;
    return std::ranges::any_of(subnets, [&](const Subnet& subnet) {
        return judged.isInSubnet(QHostAddress(QLatin1String(subnet.start)), subnet.bits);
    });
}

const QtHttpPoster::Resolver systemResolver = [](const QString& host, QObject* context,
                                                 std::function<void(const QHostInfo&)> found) {
    QHostInfo::lookupHost(host, context, std::move(found));
};

}  // namespace

/// One request; ends itself.
class QtHttpPoster::Delivery final : public QObject {
public:
    Delivery(const HttpPost& givenPost, const Options& givenOptions,
             std::function<void(Result)> whenDone, QObject* parent)
        : QObject(parent),
          post(givenPost),
          options(givenOptions),
          done(std::move(whenDone)),
          url(QString::fromStdString(post.address), QUrl::StrictMode) {
        if (!url.userInfo().isEmpty()) {
            credentials = url.userName(QUrl::FullyDecoded).toUtf8() + ':' +
                          url.password(QUrl::FullyDecoded).toUtf8();
            url.setUserInfo({});
        }
        connect(&deadline, &QTimer::timeout, this, [this] { end(statusOr(answerIsLate())); });
        deadline.setSingleShot(true);
        deadline.start(std::chrono::ceil<std::chrono::milliseconds>(post.timeLimit));
        begin();
    }

    // The reply still has something to say when the manager takes it along.
    ~Delivery() override {
        if (reply != nullptr) reply->disconnect(this);
    }

private:
    /// A body that can be read only once: Qt would send any other again, and the server might take
    /// it twice, when a connection ends without an answer.
    class SingleReading final : public QIODevice {
    public:
        SingleReading(const std::string& text, QObject* parent)
            : QIODevice(parent), rest(QByteArray::fromStdString(text)) {
            open(ReadOnly | Unbuffered);
        }

        /// Whether nothing of it was sent.
        bool isUnread() const { return !wasRead; }

        bool isSequential() const override { return true; }
        bool seek(qint64) override { return false; }
        qint64 bytesAvailable() const override { return rest.size() + QIODevice::bytesAvailable(); }

    protected:
        qint64 readData(char* into, qint64 most) override {
            const qint64 count = std::min<qint64>(most, rest.size());
            std::copy_n(rest.constData(), count, into);
            rest.remove(0, count);
            wasRead = wasRead || count > 0;
            return count;
        }
        qint64 writeData(const char*, qint64) override { return -1; }

    private:
        QByteArray rest;
        bool wasRead = false;
    };

    void begin() {
        if (url.host().isEmpty()) return refuse(Webhook::AddressError::incomplete);
        if (url.scheme() == QLatin1String("https")) return send(url);
        if (url.scheme() != QLatin1String("http"))
            return refuse(Webhook::AddressError::unencryptedAbroad);
        // A proxy might be abroad.
        manager.setProxy(QNetworkProxy::NoProxy);
        const QHostAddress literal(url.host());
        if (!literal.isNull()) return judge({literal});
        const auto& resolve = options.resolver ? options.resolver : systemResolver;
        resolve(url.host(), this, [this](const QHostInfo& found) { judge(found.addresses()); });
    }

    void judge(const QList<QHostAddress>& found) {
        if (isEnded) return;
        if (!std::ranges::all_of(found, isOfOwnNetwork))
            return refuse(Webhook::AddressError::unencryptedAbroad);
        addresses = found;
        sendToNextAddress();
    }

    void sendToNextAddress() {
        if (addresses.isEmpty())
            return end(tl::unexpected(networkFailure(QNetworkReply::HostNotFoundError)));
        QUrl checked = url;
        checked.setHost(addresses.takeFirst().toString());
        send(checked);
    }

    void send(const QUrl& target) {
        QNetworkRequest request = discreetRequest(target, options.furtherAuthorities);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::ManualRedirectPolicy);
        if (target != url)
            request.setRawHeader("Host", url.authority(QUrl::FullyEncoded).toLatin1());
        if (!credentials.isEmpty())
            request.setRawHeader("Authorization", "Basic " + credentials.toBase64());
        for (const auto& [name, value] : post.headers)
            request.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
        request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
        request.setHeader(QNetworkRequest::ContentLengthHeader,
                          static_cast<qint64>(post.body.size()));
        body = new SingleReading(post.body, this);
        reply = manager.post(request, body);
        reply->setReadBufferSize(readLimit);
        connect(reply, &QNetworkReply::readyRead, this, [this] { take(); });
        connect(reply, &QNetworkReply::finished, this, [this] { finish(); });
    }

    void take() {
        bytesRead += reply->readAll().size();
        if (bytesRead >= readLimit) end(statusOr({}));
    }

    void finish() {
        const bool isUnreached = reply->error() == QNetworkReply::ConnectionRefusedError ||
                                 reply->error() == QNetworkReply::UnknownNetworkError;
        if (isUnreached && body->isUnread() && !addresses.isEmpty()) {
            reply->deleteLater();
            return sendToNextAddress();
        }
        end(statusOr(networkFailure(reply->error())));
    }

    /// A status may be there although the rest of the answer is not.
    Result statusOr(std::string failure) const {
        if (reply == nullptr) return tl::unexpected(std::move(failure));
        const auto status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        if (!status.isValid()) return tl::unexpected(std::move(failure));
        return status.toInt();
    }

    void refuse(Webhook::AddressError why) { end(tl::unexpected(Webhook::message(why))); }

    /// Tells it later, since this may be destroyed by what follows.
    void end(Result result) {
        isEnded = true;
        deadline.stop();
        if (reply != nullptr) {
            reply->disconnect(this);
            reply->abort();
        }
        QTimer::singleShot(0, this, [this, result = std::move(result)] {
            deleteLater();
            std::exchange(done, {})(result);
        });
    }

    const HttpPost post;
    const Options& options;
    std::function<void(Result)> done;
    QUrl url;                       ///< without credentials
    QByteArray credentials;         ///< "user:password", where the address has some
    QList<QHostAddress> addresses;  ///< of the own network, not tried yet
    QNetworkAccessManager manager;
    QNetworkReply* reply = nullptr;
    SingleReading* body = nullptr;
    QTimer deadline;
    qint64 bytesRead = 0;
    bool isEnded = false;
};

QtHttpPoster::QtHttpPoster() : QtHttpPoster(Options{}) {}

QtHttpPoster::QtHttpPoster(Options givenOptions)
    : options(std::move(givenOptions)), deliveries(std::make_unique<QObject>()) {
    keepOpenSslToTheEnd();
}

QtHttpPoster::~QtHttpPoster() = default;

void QtHttpPoster::post(const HttpPost& request, std::function<void(Result)> done) {
    // Its parent owns it.
    new Delivery(request, options, std::move(done), deliveries.get());
}

}  // namespace fleetwise
