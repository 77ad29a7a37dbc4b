#pragma once

#include "reactions/http_poster.h"

#include <functional>
#include <memory>
#include <string>

class QHostInfo;
class QObject;
class QString;

namespace fleetwise {

/// Posts with Qt. Of the own network are the addresses of RFC 1918 and RFC 4193, those of this
/// machine and those of one link. What an answer says beyond its first kilobytes is not read.
/// Needs Qt's event loop.
class QtHttpPoster final : public HttpPoster {
public:
    /// Looks up the addresses of a name; tells `found` later, unless the context is gone by then.
    using Resolver = std::function<void(const QString& host, QObject* context,
                                        std::function<void(const QHostInfo&)> found)>;

    struct Options {
        std::string furtherAuthorities;  ///< certificates in PEM, trusted beside the system's
        Resolver resolver;               ///< of names for plain http; none: the system's
    };

    QtHttpPoster();
    explicit QtHttpPoster(Options options);
    ~QtHttpPoster() override;

    void post(const HttpPost& request, std::function<void(Result)> done) override;

private:
    class Delivery;

    const Options options;
    std::unique_ptr<QObject> deliveries;  ///< the parent of those under way
};

}  // namespace fleetwise
