#include "ui/settings/stored_actions.h"

#include <algorithm>

namespace fleetwise {

namespace {

auto hasId(const std::string& id) {
    return [&id](const Json& entry) { return member<std::string>(entry, "id") == id; };
}

}  // namespace

StoredActions::StoredActions(FleetMonitor& givenMonitor) : monitor(givenMonitor) {}

std::vector<StateAction> StoredActions::all() const {
    return StateAction::decode(monitor.settings().get(Settings::stateActions));
}

std::optional<StateAction> StoredActions::find(const std::string& id) const {
    const auto actions = all();
    const auto found = std::ranges::find(actions, id, &StateAction::id);
    if (found == actions.end()) return {};
    return *found;
}

void StoredActions::put(const StateAction& action) {
    const auto encoded = parseJson(StateAction::encode({action}));
    if (!encoded || encoded->empty()) return;
    Json list = monitor.settings().get(Settings::stateActions);
    const auto found = std::find_if(list.begin(), list.end(), hasId(action.id));
    Json& entry = found == list.end() ? list.emplace_back(Json::object()) : *found;
    entry.erase("confirmed");
    entry.update(encoded->front());
    monitor.change(Settings::stateActions, list);
}

void StoredActions::remove(const std::string& id) {
    Json list = monitor.settings().get(Settings::stateActions);
    const auto found = std::find_if(list.begin(), list.end(), hasId(id));
    if (found == list.end()) return;
    list.erase(found);
    monitor.change(Settings::stateActions, list);
}

}  // namespace fleetwise
