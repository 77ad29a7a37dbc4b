#include "fleet/archive_titles.h"

#include "foundation/json.h"

#include <simdjson.h>

namespace fleetwise {

namespace {

constexpr std::int64_t titlesVersion = 1;

/// The texts under the names that they are stored by.
template <typename Title, typename Visit>
void forEachText(Title& title, Visit&& visit) {
    visit("title", title.title);
    visit("prompt", title.prompt);
    visit("cwd", title.cwd);
    visit("model", title.model);
    visit("parent", title.parent);
}

template <typename Title, typename Visit>
void forEachFlag(Title& title, Visit&& visit) {
    visit("isDesktop", title.isDesktop);
    visit("isBranch", title.isBranch);
}

Json encodeTitle(const ArchiveTitle& title) {
    Json object{{"modified", title.stamp.modifiedNanoseconds}, {"size", title.stamp.sizeBytes}};
    forEachText(title, [&](const char* key, const std::string& text) {
        if (!text.empty()) object[key] = text;
    });
    forEachFlag(title, [&](const char* key, bool flag) {
        if (flag) object[key] = true;
    });
    return object;
}

// The library throws on what does not fit; decodeArchiveTitles() catches it.

ArchiveTitle decodeTitle(simdjson::dom::object object) {
    ArchiveTitle title;
    title.stamp.modifiedNanoseconds = object["modified"].get_int64();
    title.stamp.sizeBytes = object["size"].get_int64();
    simdjson::dom::element found;
    forEachText(title, [&](const char* key, std::string& text) {
        if (!object[key].get(found)) text = std::string_view(found);
    });
    forEachFlag(title, [&](const char* key, bool& flag) {
        if (!object[key].get(found)) flag = bool(found);
    });
    return title;
}

}  // namespace

std::string encodeArchiveTitles(const ArchiveTitles& titles) {
    Json files = Json::object();
    for (const auto& [path, title] : titles)
        files[path] = encodeTitle(title);
    return encodeJson({{"version", titlesVersion}, {"files", std::move(files)}});
}

std::optional<ArchiveTitles> decodeArchiveTitles(std::string_view text) {
    try {
        simdjson::dom::parser parser;
        const simdjson::dom::object document = parser.parse(text.data(), text.size());
        if (document["version"].get_int64() != titlesVersion) return {};
        ArchiveTitles titles;
        for (const auto [path, title] : document["files"].get_object())
            titles.emplace(path, decodeTitle(title));
        return titles;
    } catch (const simdjson::simdjson_error&) {
        return {};
    }
}

}  // namespace fleetwise
