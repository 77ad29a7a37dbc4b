#pragma once

#include "foundation/user_defaults.h"

#include <memory>

class QSettings;
class QString;

namespace fleetwise {

/// The user defaults in the system's settings store: on Linux the INI file
/// "Fleetwise/Fleetwise.conf" in the XDG config folder. Lists and dictionaries are kept as JSON
/// text. Reading writes nothing.
class QtUserDefaults final : public UserDefaults {
public:
    QtUserDefaults();

    /// What an earlier version of the program stored, which called itself "fleetwise".
    static QtUserDefaults ofPreviousName();

    ~QtUserDefaults() override;

    void set(const std::string& key, const Json& value) override;
    void remove(const std::string& key) override;

protected:
    std::optional<Json> stored(const std::string& key) const override;

private:
    explicit QtUserDefaults(const QString& name);

    std::unique_ptr<QSettings> settings;
};

}  // namespace fleetwise
