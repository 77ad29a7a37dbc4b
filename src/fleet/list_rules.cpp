#include "fleet/list_rules.h"

#include "localisation/localisation.h"

namespace fleetwise {

namespace {

struct Name {
    std::string_view raw;
    Text label;
};

constexpr std::array<Name, allGroupModes.size()> groupModes{{
    {"status", "Zustand"_text},
    {"application", "Anwendung"_text},
    {"project", "Projekt"_text},
    {"tool", "Werkzeug"_text},
    {"federation", "Verbund"_text},
}};

constexpr std::array<Name, allSortModes.size()> sortModes{{
    {"status", "Dringlichkeit"_text},
    {"name", "Name"_text},
    {"activity", "Letzte Aktivität"_text},
    {"context", "Kontextfüllung"_text},
}};

constexpr std::array<Name, allListFilters.size()> listFilters{{
    {"attention", "Braucht dich"_text},
    {"working", "Arbeitet"_text},
    {"dormant", "Ruhend"_text},
}};

template <typename Names, typename Value>
const Name& nameOf(const Names& names, Value value) {
    return names[static_cast<std::size_t>(value)];
}

}  // namespace

std::string_view rawValue(GroupMode mode) {
    return nameOf(groupModes, mode).raw;
}
std::string_view rawValue(SortMode mode) {
    return nameOf(sortModes, mode).raw;
}
std::string_view rawValue(ListFilter filter) {
    return nameOf(listFilters, filter).raw;
}

std::string label(GroupMode mode) {
    return localised(nameOf(groupModes, mode).label);
}
std::string label(SortMode mode) {
    return localised(nameOf(sortModes, mode).label);
}
std::string label(ListFilter filter) {
    return localised(nameOf(listFilters, filter).label);
}

}  // namespace fleetwise
