#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// The addresses by which editors open a folder, and come to the front where they have it open.
class EditorAddress {
public:
    /// For the host application of this id (Session::hostBundleId) and the absolute path of a
    /// folder: "vscode://file/srv/x/". Nothing for applications without such addresses.
    static std::optional<std::string> of(std::string_view hostId, std::string_view path);
};

}  // namespace fleetwise
