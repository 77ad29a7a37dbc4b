#pragma once

#include <tl/expected.hpp>

#include <string>

namespace fleetwise {

/// Whether the desktop starts this program when the user logs in. Main thread only.
class LoginStart {
public:
    LoginStart() = default;
    LoginStart(const LoginStart&) = delete;
    LoginStart& operator=(const LoginStart&) = delete;
    virtual ~LoginStart() = default;

    virtual bool isOn() const = 0;

    /// The error is for the user, in the interface language.
    virtual tl::expected<void, std::string> set(bool isOn) = 0;
};

}  // namespace fleetwise
