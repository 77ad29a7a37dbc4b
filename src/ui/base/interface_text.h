#pragma once

#include "localisation/localisation.h"

#include <QString>

#include <string>

namespace fleetwise {

inline QString qtText(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

/// The text in the interface language.
inline QString shown(Text text) {
    return qtText(localised(text));
}

/// As shown, with the placeholders filled; texts are given in UTF-8.
template <typename... Arguments>
QString shown(Text text, const Arguments&... arguments) {
    return qtText(localisedFormat(text, arguments...));
}

}  // namespace fleetwise
