#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace fleetwise::hook {

/// A list with room for `limit` elements in itself, in the order they were added.
template <typename Element, std::size_t limit>
class BoundedList {
public:
    /// Adds the element and returns it as it stands in the list, until that changes; null where
    /// there is no room left.
    Element* add(const Element& element) {
        if (count == limit) return nullptr;
        elements[count] = element;
        return &elements[count++];
    }

    bool contains(const Element& element) const {
        const auto known = all();
        return std::find(known.begin(), known.end(), element) != known.end();
    }

    void clear() { count = 0; }

    /// Removes the elements that `matches`; whether there were any.
    template <typename Predicate>
    bool removeIf(Predicate matches) {
        const auto end = elements.begin() + static_cast<std::ptrdiff_t>(count);
        const auto kept = std::remove_if(elements.begin(), end, matches);
        count = static_cast<std::size_t>(kept - elements.begin());
        return kept != end;
    }

    std::span<const Element> all() const { return {elements.data(), count}; }
    bool isEmpty() const { return count == 0; }

private:
    std::array<Element, limit> elements{};
    std::size_t count = 0;
};

}  // namespace fleetwise::hook
