#pragma once

#include "foundation/date.h"

#include <tl/expected.hpp>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

struct HttpPost {
    std::string address;  ///< http or https
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    Seconds timeLimit{5};  ///< for all of it
};

/// Posts over HTTP. Main thread only.
class HttpPoster {
public:
    /// The status code of the answer, or for the user why there is none.
    using Result = tl::expected<int, std::string>;

    HttpPoster() = default;
    HttpPoster(const HttpPoster&) = delete;
    HttpPoster& operator=(const HttpPoster&) = delete;
    virtual ~HttpPoster() = default;

    /// Over https only to servers whose certificate is good; over plain http only to machines of
    /// the user's own network, whatever their names resolve to. Redirects are not followed. `done`
    /// is called once, within the time limit and not before this returns; not at all once this is
    /// destroyed.
    virtual void post(const HttpPost& request, std::function<void(Result)> done) = 0;
};

}  // namespace fleetwise
