#pragma once

#include "foundation/date.h"
#include "monitor/feed_update.h"

#include <memory>
#include <string>

class QObject;

namespace fleetwise {

/// Fetches over HTTPS with the system's certificates, and tells the server nothing but the address
/// asked for and the program's version: no cookies, no credentials, no language. Redirects are
/// followed three times at most and only to HTTPS; an answer larger than an update feed may be
/// (maximumUpdateFeedBytes) is broken off. Between two downloads nothing is kept. Needs Qt's event
/// loop.
class QtFeedDownload final : public FeedDownload {
public:
    struct Options {
        Seconds timeLimit{30};           ///< for all of a download
        std::string furtherAuthorities;  ///< certificates in PEM, trusted beside the system's
    };

    QtFeedDownload(std::string programVersion, Options options);
    explicit QtFeedDownload(std::string programVersion);
    ~QtFeedDownload() override;

    void get(const std::string& address, std::function<void(Result)> done) override;

private:
    class Transfer;

    const std::string version;
    const Options options;
    std::unique_ptr<QObject> transfers;  ///< the parent of those under way
};

}  // namespace fleetwise
