#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// The words that someone looks for: each must occur somewhere.
class ArchiveSearch {
public:
    ArchiveSearch() = default;
    explicit ArchiveSearch(std::string_view query);

    bool isEmpty() const { return words.empty(); }

    /// Whether each word occurs in one of the texts, which are in lower case.
    bool matches(std::string_view text, std::string_view day, std::string_view clock) const;

    bool operator==(const ArchiveSearch&) const = default;

private:
    std::vector<std::string> words;
};

}  // namespace fleetwise
