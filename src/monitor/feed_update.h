#pragma once

#include "cost/price_feed.h"
#include "foundation/main_loop.h"

#include <tl/expected.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace fleetwise {

/// Fetches the update feed. Belongs to the main thread.
class FeedDownload {
public:
    /// The bytes, or for the user why there are none.
    using Result = tl::expected<std::string, std::string>;

    FeedDownload() = default;
    FeedDownload(const FeedDownload&) = delete;
    FeedDownload& operator=(const FeedDownload&) = delete;
    virtual ~FeedDownload() = default;

    /// Fetches what stands at the address. `done` is called once, on the main thread, within a
    /// bounded time and not before this returns; not at all once the download is destroyed.
    virtual void get(const std::string& address, std::function<void(Result)> done) = 0;
};

/// Looks once a day into the update feed for prices and for a newer version of the program, and
/// again after an hour where the feed did not come. Without an address it does nothing. Belongs to
/// the main thread.
class FeedUpdate {
public:
    /// `prices` works in the loop's background jobs, so it must outlive the loop. `address` must
    /// begin with "https://" or be empty; `runningVersion` is this program's.
    FeedUpdate(MainLoop& loop, FeedDownload& download, PriceFeed& prices, std::string address,
               std::string runningVersion);

    /// Begins, once. `onChange` is called after each look into the feed.
    void start(std::function<void()> onChange);

    /// Whether there is an address to look at.
    bool hasAddress() const { return !address.empty(); }

    /// The version that the feed lists, where that is newer than the running one.
    const std::optional<std::string>& newerVersion() const { return newer; }

    /// When the feed was last read.
    std::optional<Date> lastChecked() const { return checked; }

    /// For the user: why the feed is not looked into, or could not be the last time.
    const std::optional<std::string>& problem() const { return trouble; }

private:
    using Feed = tl::expected<UpdateFeed, UpdateFeedFault>;

    void check();
    void checkAfter(Seconds delay);
    void take(FeedDownload::Result downloaded);
    void finish(const Feed& feed, Date readAt);
    void tell(std::optional<std::string> why);

    MainLoop& loop;
    FeedDownload& download;
    PriceFeed& prices;
    const std::string address;
    const std::string runningVersion;
    std::function<void()> changed;
    std::optional<std::string> newer;
    std::optional<Date> checked;
    std::optional<std::string> trouble;
    std::unique_ptr<MainLoop::Subscription> timer;
    std::shared_ptr<bool> aliveToken = std::make_shared<bool>(true);
};

}  // namespace fleetwise
