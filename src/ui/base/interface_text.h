#pragma once

#include "localisation/localisation.h"

#include <QString>
#include <QTextDocument>

#include <cstdint>
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

/// See localisedCount.
inline QString shownCount(std::int64_t count, Text one, Text several) {
    return qtText(localisedCount(count, one, several));
}

/// The text for a tooltip, which shows it literally even where it looks like markup.
inline QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

}  // namespace fleetwise
