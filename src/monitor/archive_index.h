#pragma once

#include "fleet/archive_entry.h"
#include "foundation/main_loop.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace fleetwise {

/// Every past and present session that an agent has left something of on this machine, as it was
/// last listed. Nothing is read before the first `refresh`. Main thread only.
class ArchiveIndex {
public:
    class Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        virtual void archiveChanged() = 0;  ///< entries differ, also where only titles came in
    };

    /// How far the reading of titles and prompts has come; nothing while none is going on.
    struct Progress {
        std::size_t read = 0;
        std::size_t all = 0;

        bool operator==(const Progress&) const = default;
    };

    /// Lists, fast: what the folders and the remembered titles tell; nothing else is opened. Then,
    /// a portion at a time, reads the titles and prompts that are not known yet. Both are called
    /// on another thread, never at once.
    struct Reader {
        std::function<std::vector<ArchiveEntry>(Date now)> list;
        /// Fills the entries in; called again and again with the next portion. What turns out to
        /// be no session of the user's is left out.
        std::function<std::vector<ArchiveEntry>(std::vector<ArchiveEntry> portion)> complete;
    };

    ArchiveIndex(MainLoop& loop, Reader reader);
    ~ArchiveIndex();
    ArchiveIndex(const ArchiveIndex&) = delete;
    ArchiveIndex& operator=(const ArchiveIndex&) = delete;

    /// Asks for a new listing; at most one goes on at a time.
    void refresh();

    /// The latest activity first, then by id.
    const std::vector<ArchiveEntry>& entries() const;
    /// Null for a session that is not listed.
    const ArchiveEntry* entry(const std::string& sessionId) const;
    bool hasListed() const;
    std::optional<Progress> progress() const;

    void addObserver(Observer& observer);
    void removeObserver(Observer& observer);

private:
    struct Listing {
        std::vector<ArchiveEntry> entries;
        std::unordered_map<std::string, std::size_t> places;  ///< of the entries, by their ids
    };

    static Listing listingOf(std::vector<ArchiveEntry> found);
    static std::unordered_map<std::string, std::size_t> placesOf(
        const std::vector<ArchiveEntry>& entries);

    void goOn();
    void list();
    void adopt(Listing newListing);
    void readPortion();
    void adoptPortion(const std::vector<std::string>& asked, std::vector<ArchiveEntry> filled);
    void tellSoon();
    void tell();

    MainLoop& loop;
    Reader reader;
    std::vector<Observer*> observers;
    Listing listing;
    std::vector<std::string> unread;  ///< ids whose titles are not known, in the order of reading
    std::size_t readSoFar = 0;        ///< of those
    bool isBusy = false;              ///< a background job goes on
    bool isListingWanted = false;
    bool isListed = false;
    std::unique_ptr<MainLoop::Subscription> telling;
    /// What follows a background job only happens while this exists.
    std::shared_ptr<bool> aliveToken = std::make_shared<bool>(true);
};

}  // namespace fleetwise
