#pragma once

#include <QString>

#include <string>

namespace fleetwise {

/// Any UTF-8 text for a label that is to show it as it is: characters that have no shape of their
/// own or turn the direction of writing around stand there as "⟨U+202E⟩". Very long words may be
/// broken, by characters without width; so this is not for copying.
QString literalText(const std::string& text);

}  // namespace fleetwise
