#include "foundation/user_defaults.h"

#include <charconv>

namespace fleetwise {

namespace {

/// Text that holds JSON as the JSON it holds: how a text-only store keeps lists and dictionaries.
Json unwrapped(const Json& value) {
    if (!value.is_string()) return value;
    return parseJson(value.get_ref<const std::string&>()).value_or(Json());
}

}  // namespace

void UserDefaults::registerDefaults(std::map<std::string, Json> defaults) {
    registered = std::move(defaults);
}

Json UserDefaults::value(const std::string& key) const {
    if (auto found = stored(key)) return *std::move(found);
    const auto found = registered.find(key);
    return found == registered.end() ? Json() : found->second;
}

std::optional<bool> UserDefaults::boolean(const std::string& key) const {
    const Json found = value(key);
    if (found.is_boolean()) return found.get<bool>();
    if (found.is_number()) return found.get<double>() != 0;
    if (found == "true" || found == "1") return true;
    if (found == "false" || found == "0") return false;
    return {};
}

std::optional<std::int64_t> UserDefaults::integer(const std::string& key) const {
    const Json found = value(key);
    if (found.is_number_integer()) return found.get<std::int64_t>();
    if (!found.is_string()) return {};
    const auto& text = found.get_ref<const std::string&>();
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return number;
}

std::string UserDefaults::string(const std::string& key) const {
    const Json found = value(key);
    return found.is_string() ? found.get<std::string>() : std::string();
}

std::vector<std::string> UserDefaults::strings(const std::string& key) const {
    std::vector<std::string> texts;
    for (const Json& element : unwrapped(value(key))) {
        if (element.is_string()) texts.push_back(element.get<std::string>());
    }
    return texts;
}

Json UserDefaults::dictionary(const std::string& key) const {
    Json found = unwrapped(value(key));
    return found.is_object() ? found : Json::object();
}

std::optional<Json> InMemoryUserDefaults::stored(const std::string& key) const {
    const auto found = values.find(key);
    if (found == values.end()) return {};
    return found->second;
}

}  // namespace fleetwise
