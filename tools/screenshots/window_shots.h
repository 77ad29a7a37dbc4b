#pragma once

#include "screenshots/text_audit.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QString>

#include <string>
#include <vector>

namespace fleetwise {
class LiveFleet;
}

namespace fleetwise::screenshots {

/// How the windows are to look in one run.
struct Run {
    QString name;                 ///< of its folder
    std::string language = "de";  ///< the setting, also pseudoLanguage
    std::string mode = "light";   ///< the setting of the appearance
    double textScale = 1;
};

/// Opens all windows of the application on a fleet and writes a picture of each.
class WindowShots {
public:
    /// All that is given outlives this. Pictures go to `folder`/<run>/<window>.png.
    WindowShots(QApplication& application, LiveFleet& fleet, QString folder);

    /// What the texts of the windows lack. The error is a message.
    std::vector<TextFault> take(const Run& run);

private:
    void takeFleet();
    void takePopover();
    void takeUsage();
    void takeSettings();
    void takeOnboarding();
    void grab(QWidget& window, const QString& name);

    QApplication& application;
    LiveFleet& fleet;
    const QString folder;
    const QPalette desktopPalette;
    const QFont desktopFont;
    QString runFolder;
    std::vector<TextFault> faults;
};

}  // namespace fleetwise::screenshots
