#pragma once

#include <QNetworkReply>
#include <QNetworkRequest>

#include <string>

namespace fleetwise {

/// A request that tells the server nothing of the user: no cookies, no remembered credentials, no
/// language; and whose answer comes as it is, not from a cache and not packed. `furtherAuthorities`
/// are certificates in PEM, trusted beside the system's.
QNetworkRequest discreetRequest(const QUrl& url, const std::string& furtherAuthorities);

/// Why no answer came, for the user.
std::string networkFailure(QNetworkReply::NetworkError error);

/// That it took too long, for the user.
std::string answerIsLate();

/// To be called before OpenSSL is first used: at the end of the program it would free what belongs
/// to Qt's threads for transfers, which may be about to free it themselves.
void keepOpenSslToTheEnd();

}  // namespace fleetwise
