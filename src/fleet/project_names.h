#pragma once

#include <map>
#include <string>
#include <vector>

namespace fleetwise {

/// How projects are called where several stand together: by the last folder, and by the path where
/// two share that. The one without a folder is called so.
class ProjectNames {
public:
    /// `home` shortens paths.
    ProjectNames(const std::vector<std::string>& folders, std::string givenHome);

    std::string name(const std::string& folder) const;
    /// The whole path, or that there is no project.
    std::string path(const std::string& folder) const;

private:
    std::string home;
    std::map<std::string, std::size_t> counts;  ///< of folders by their last part
};

}  // namespace fleetwise
