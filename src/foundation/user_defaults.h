#pragma once

#include "foundation/json.h"

#include <map>
#include <string>
#include <vector>

namespace fleetwise {

/// The application's settings: one value per key, with registered defaults behind the stored
/// values. Belongs to the main thread.
class UserDefaults {
public:
    UserDefaults() = default;
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;
    virtual ~UserDefaults() = default;

    /// A key that was never written reads as its registered default.
    void registerDefaults(std::map<std::string, Json> defaults);

    /// The stored value, else the registered default, else null. A store that keeps text only
    /// hands back text; the typed readers below understand it.
    Json value(const std::string& key) const;

    /// Whether the key was ever written; a registered default does not count.
    bool isStored(const std::string& key) const { return stored(key).has_value(); }

    /// Nothing for a value of another type.
    std::optional<bool> boolean(const std::string& key) const;
    std::optional<std::int64_t> integer(const std::string& key) const;

    /// A value of another type reads as "" or an empty list.
    std::string string(const std::string& key) const;
    std::vector<std::string> strings(const std::string& key) const;

    /// The stored object, else an empty object.
    Json dictionary(const std::string& key) const;

    virtual void set(const std::string& key, const Json& value) = 0;
    virtual void remove(const std::string& key) = 0;

protected:
    /// The stored value, nothing where the key was never written.
    virtual std::optional<Json> stored(const std::string& key) const = 0;

private:
    std::map<std::string, Json> registered;
};

/// Settings that live as long as the object.
class InMemoryUserDefaults final : public UserDefaults {
public:
    void set(const std::string& key, const Json& value) override { values[key] = value; }
    void remove(const std::string& key) override { values.erase(key); }

protected:
    std::optional<Json> stored(const std::string& key) const override;

private:
    std::map<std::string, Json> values;
};

}  // namespace fleetwise
