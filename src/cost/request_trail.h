#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Which requests a session made, one after the other, in four bytes for each: a hash of all up to
/// it. So sessions can be compared by their beginnings without reading their files again. Trails
/// that begin alike stand together in their order.
class RequestTrail {
public:
    /// The next request, by what names it.
    void add(std::string_view key);

    void clear() { *this = {}; }

    std::size_t size() const { return hashes.size(); }

    /// Stands for the first `requests` requests together, 1 at least and size() at most.
    std::uint32_t end(std::size_t requests) const { return hashes[requests - 1]; }

    /// How many requests both begin with.
    std::size_t commonPast(const RequestTrail& other) const;

    /// For the cache file: eight hexadecimal digits for each request.
    std::string text() const;
    static std::optional<RequestTrail> fromText(std::string_view text);

    bool operator==(const RequestTrail& other) const { return hashes == other.hashes; }
    std::strong_ordering operator<=>(const RequestTrail& other) const;

private:
    std::vector<std::uint32_t> hashes;
    std::uint64_t state = 0xcbf29ce484222325;  ///< of all requests so far (FNV-1a, 64 bits)
};

}  // namespace fleetwise
