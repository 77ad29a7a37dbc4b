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
    /// Adds the element; one more than there is room for is left out.
    void add(const Element& element) {
        if (count < limit) elements[count++] = element;
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
    std::span<Element> all() { return {elements.data(), count}; }
    bool isEmpty() const { return count == 0; }

private:
    std::array<Element, limit> elements{};
    std::size_t count = 0;
};

}  // namespace fleetwise::hook
