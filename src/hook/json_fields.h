#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace fleetwise::hook {

/// The member of an object that a field stands under.
template <typename Owner, typename Field>
struct JsonField {
    std::string_view key;
    Field Owner::*field;
};

/// Sets the field that stands under `key`; a key that is not in the table is ignored.
template <typename Owner, typename Field, std::size_t count, typename Value>
void assignField(const JsonField<Owner, Field> (&fields)[count], std::string_view key,
                 const Value& value, Owner& owner) {
    const auto known = std::find_if(std::begin(fields), std::end(fields),
                                    [&](const auto& entry) { return entry.key == key; });
    if (known != std::end(fields)) owner.*known->field = value;
}

}  // namespace fleetwise::hook
