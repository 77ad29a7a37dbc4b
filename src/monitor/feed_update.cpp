#include "monitor/feed_update.h"

#include "foundation/version.h"
#include "localisation/localisation.h"

#include <utility>

namespace fleetwise {

namespace {

constexpr Seconds usualInterval = std::chrono::hours(24);
constexpr Seconds intervalAfterFailure = std::chrono::hours(1);

bool isNewer(const std::optional<std::string>& listed, const std::string& running) {
    const auto theirs = listed ? Version::parse(*listed) : std::nullopt;
    const auto ours = Version::parse(running);
    return theirs && ours && *theirs > *ours;
}

}  // namespace

FeedUpdate::FeedUpdate(MainLoop& givenLoop, FeedDownload& givenDownload, PriceFeed& givenPrices,
                       std::string givenAddress, std::string givenVersion)
    : loop(givenLoop),
      download(givenDownload),
      prices(givenPrices),
      address(std::move(givenAddress)),
      runningVersion(std::move(givenVersion)) {}

void FeedUpdate::start(std::function<void()> onChange) {
    changed = std::move(onChange);
    if (address.empty()) return;
    if (!address.starts_with("https://")) {
        return tell(localised("Die Adresse des Update-Feeds beginnt nicht mit https://"_text));
    }
    check();
}

void FeedUpdate::check() {
    const std::weak_ptr<bool> alive = aliveToken;
    download.get(address, [this, alive](FeedDownload::Result downloaded) {
        if (!alive.expired()) take(std::move(downloaded));
    });
}

void FeedUpdate::checkAfter(Seconds delay) {
    timer = loop.after(delay, [this] { check(); });
}

void FeedUpdate::take(FeedDownload::Result downloaded) {
    if (!downloaded) {
        checkAfter(intervalAfterFailure);
        return tell(std::move(downloaded.error()));
    }
    checkAfter(usualInterval);
    const std::weak_ptr<bool> alive = aliveToken;
    const Date now = loop.now();
    runInBackground(
        loop,
        [&feed = prices, bytes = *std::move(downloaded), now] { return feed.adopt(bytes, now); },
        [this, alive, now](const Feed& feed) {
            if (!alive.expired()) finish(feed, now);
        });
}

void FeedUpdate::finish(const Feed& feed, Date readAt) {
    if (!feed) return tell(localised("Update-Feed nicht lesbar"_text));
    checked = readAt;
    newer.reset();
    if (isNewer(feed->newestVersion, runningVersion)) newer = feed->newestVersion;
    tell({});
}

void FeedUpdate::tell(std::optional<std::string> why) {
    trouble = std::move(why);
    if (changed) changed();
}

}  // namespace fleetwise
