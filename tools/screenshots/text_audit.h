#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

namespace fleetwise::screenshots {

/// A text of a window that its reader will stumble over.
struct TextFault {
    enum class Kind {
        cut,           ///< has less room than it needs
        untranslated,  ///< not in the pseudo-language
    };

    Kind kind = Kind::cut;
    QString text;
    QString place;  ///< class names from the window down to the widget
};

/// Looks at what can be seen of a window: labels, buttons, choices, fields, headings of tables, and
/// at tooltips and accessible names. What shows shortened on purpose, with the whole as a tooltip,
/// is not cut. `isData` says of a text that it comes from a session and not from the interface;
/// only asked where the interface is in the pseudo-language.
std::vector<TextFault> auditTexts(const QWidget& window,
                                  const std::function<bool(const QString&)>& isData);

}  // namespace fleetwise::screenshots
