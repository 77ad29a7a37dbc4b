#include "localisation/language.h"

#include "foundation/text.h"
#include "localisation/pseudo_language.h"

#include <algorithm>

namespace fleetwise {

namespace {

/// "de_AT.UTF-8@euro" becomes "de-AT"; the locales without a language become empty.
std::string languageTag(std::string_view locale) {
    std::string tag(locale.substr(0, locale.find_first_of(".@")));
    if (tag == "C" || tag == "POSIX") return {};
    std::replace(tag.begin(), tag.end(), '_', '-');
    return tag;
}

std::optional<std::string> locale(const EnvironmentLookup& environment) {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        auto value = environment(name);
        if (value && !value->empty()) return value;
    }
    return {};
}

std::vector<std::string> languageTags(std::string_view list) {
    std::vector<std::string> tags;
    while (!list.empty()) {
        const std::size_t length = std::min(list.find(':'), list.size());
        auto tag = languageTag(list.substr(0, length));
        if (!tag.empty()) tags.push_back(std::move(tag));
        list.remove_prefix(std::min(length + 1, list.size()));
    }
    return tags;
}

bool isInterfaceLanguage(std::string_view language) {
    return std::find(interfaceLanguages.begin(), interfaceLanguages.end(), language) !=
           interfaceLanguages.end();
}

}  // namespace

std::vector<std::string> preferredLanguages(const EnvironmentLookup& environment) {
    const auto userLocale = locale(environment);
    const std::string tag = userLocale ? languageTag(*userLocale) : std::string();
    if (userLocale && tag.empty()) return {};
    auto tags = languageTags(environment("LANGUAGE").value_or(""));
    if (tags.empty() && !tag.empty()) tags.push_back(tag);
    return tags;
}

std::string interfaceLanguage(std::string_view setting, const std::vector<std::string>& preferred) {
    const bool isKnown = isInterfaceLanguage(setting) || setting == pseudoLanguage;
    if (isKnown) return std::string(setting);
    for (const auto& tag : preferred) {
        const std::string primary = asciiLowercased(std::string_view(tag).substr(0, tag.find('-')));
        if (isInterfaceLanguage(primary)) return primary;
    }
    return std::string(interfaceLanguages.front());
}

}  // namespace fleetwise
