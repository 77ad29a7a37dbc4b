#include "platform/qt_network_request.h"

#include "localisation/localisation.h"

#include <QSslConfiguration>
#include <openssl/crypto.h>

namespace fleetwise {

QNetworkRequest discreetRequest(const QUrl& url, const std::string& furtherAuthorities) {
    QNetworkRequest request(url);
    if (!furtherAuthorities.empty()) {
        auto configuration = QSslConfiguration::defaultConfiguration();
        configuration.addCaCertificates(
            QSslCertificate::fromData(QByteArray::fromStdString(furtherAuthorities)));
        request.setSslConfiguration(configuration);
    }
    using Request = QNetworkRequest;
    request.setAttribute(Request::CookieLoadControlAttribute, Request::Manual);
    request.setAttribute(Request::CookieSaveControlAttribute, Request::Manual);
    request.setAttribute(Request::AuthenticationReuseAttribute, Request::Manual);
    request.setAttribute(Request::CacheLoadControlAttribute, Request::AlwaysNetwork);
    request.setAttribute(Request::CacheSaveControlAttribute, false);
    // Qt would name the user's language, and would unpack without a limit of ours.
    request.setRawHeader("Accept-Language", "*");
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

std::string networkFailure(QNetworkReply::NetworkError error) {
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

std::string answerIsLate() {
    return localised("Der Server hat nicht rechtzeitig geantwortet"_text);
}

void keepOpenSslToTheEnd() {
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
}

}  // namespace fleetwise
