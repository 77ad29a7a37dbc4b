#include "fleet/project_names.h"

#include "fleet/session.h"
#include "localisation/localisation.h"

#include <set>
#include <utility>

namespace fleetwise {

namespace {

/// Names and paths as rows of sessions show them.
Session sessionIn(const std::string& folder) {
    Session session;
    if (!folder.empty()) session.cwd = folder;
    return session;
}

}  // namespace

ProjectNames::ProjectNames(const std::vector<std::string>& folders, std::string givenHome)
    : home(std::move(givenHome)) {
    for (const std::string& folder : std::set(folders.begin(), folders.end()))
        ++counts[sessionIn(folder).projectName()];
}

std::string ProjectNames::path(const std::string& folder) const {
    return folder.empty() ? localised("Ohne Projekt"_text) : sessionIn(folder).displayPath(home);
}

std::string ProjectNames::name(const std::string& folder) const {
    const std::string last = sessionIn(folder).projectName();
    const auto count = counts.find(last);
    const bool isTold = !last.empty() && (count == counts.end() || count->second < 2);
    return isTold ? last : path(folder);
}

}  // namespace fleetwise
