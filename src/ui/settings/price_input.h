#pragma once

#include <QString>
#include <tl/expected.hpp>

#include <optional>

namespace fleetwise {

/// What the user typed as US dollars per million tokens, in the form of the interface language:
/// nothing for an empty text; the error says, for the user, why it is no price.
tl::expected<std::optional<double>, QString> readPrice(const QString& text);

}  // namespace fleetwise
