#pragma once

#include <tl/expected.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// What the program's update feed tells: an RSS document whose items are versions of the program,
/// with the prices of tokens in elements of their own.
struct UpdateFeed {
    /// The contents of all elements <fleetwise:preise>, in their order.
    std::vector<std::string> priceBlocks;

    /// The highest version (see Version) among the items. An item's version is the attribute
    /// "shortVersionString" of its <enclosure> or its child element of that name, else the same
    /// with "version", under any prefix; what is no version is passed over.
    std::optional<std::string> newestVersion;

    bool operator==(const UpdateFeed&) const = default;
};

/// Why a feed is not read.
enum class UpdateFeedFault {
    tooLarge,       ///< larger than maximumUpdateFeedBytes
    notUtf8,        ///< declares another encoding, or holds bytes that are no character of XML
    doctype,        ///< declares a document type, and with it might declare entities
    notWellFormed,  ///< is no XML
};

inline constexpr std::size_t maximumUpdateFeedBytes = 4 << 20;

/// Reads any bytes as a feed.
tl::expected<UpdateFeed, UpdateFeedFault> readUpdateFeed(std::string_view bytes);

}  // namespace fleetwise
