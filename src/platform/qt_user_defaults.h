#pragma once

#include "foundation/user_defaults.h"

#include <memory>

class QSettings;

namespace fleetwise {

/// The user defaults in the system's settings store: on Linux the INI file
/// "Fleetwise/Fleetwise.conf" in the XDG config folder. Lists and dictionaries are kept as JSON
/// text. Reading writes nothing.
class QtUserDefaults final : public UserDefaults {
public:
    QtUserDefaults();
    ~QtUserDefaults() override;

    void set(const std::string& key, const Json& value) override;
    void remove(const std::string& key) override;

protected:
    std::optional<Json> stored(const std::string& key) const override;

private:
    std::unique_ptr<QSettings> settings;
};

}  // namespace fleetwise
