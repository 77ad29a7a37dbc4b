#include "session/model_name.h"

#include <algorithm>
#include <vector>

namespace fleetwise {

namespace {

constexpr std::string_view makersPrefix = "claude-";
constexpr std::string_view largeContext = "[1m]";
constexpr std::size_t dateLength = 8;

bool isNumber(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        return character >= '0' && character <= '9';
    });
}

std::vector<std::string_view> partsOf(std::string_view text) {
    std::vector<std::string_view> parts;
    while (true) {
        const auto end = text.find('-');
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

std::string capitalised(std::string_view word) {
    std::string name(word);
    if (name.front() >= 'a' && name.front() <= 'z')
        name.front() = static_cast<char>(name.front() - 32);
    return name;
}

}  // namespace

std::string displayModelName(std::string_view id) {
    if (id == "<synthetic>") return {};
    if (!id.starts_with(makersPrefix)) return std::string(id);
    const bool isLarge = id.ends_with(largeContext);
    std::string_view rest = id.substr(makersPrefix.size());
    if (isLarge) rest.remove_suffix(largeContext.size());
    std::string words;
    std::string version;
    for (const std::string_view part : partsOf(rest)) {
        if (part.empty()) return std::string(id);
        if (!isNumber(part)) {
            words += (words.empty() ? "" : " ") + capitalised(part);
        } else if (part.size() < dateLength) {
            version += (version.empty() ? "" : ".") + std::string(part);
        }
    }
    if (words.empty()) return std::string(id);
    return words + (version.empty() ? "" : " " + version) + (isLarge ? " 1M" : "");
}

}  // namespace fleetwise
