#pragma once

#include <QImage>
#include <QPoint>
#include <QSize>

namespace fleetwise {

/// Where things stand in the window of the disk image that the program is handed out in, in
/// points from the window's upper left corner.
struct DiskImageLayout {
    QSize window{600, 400};
    int iconSide = 128;
    QPoint application{150, 185};   ///< the middle of the program's icon
    QPoint applications{450, 185};  ///< the middle of the applications folder's icon
    int labelHeight = 44;           ///< of the name below an icon
};

/// The program's icon, `side` pixels wide and high: the mark on a rounded square, with nothing
/// behind it.
QImage applicationIcon(int side);

/// 1200 × 630, what a link to the program shows elsewhere. In the interface language.
QImage socialImage();

/// What lies behind the icons of the disk image: an arrow from one to the other, and how to
/// install in words, in the interface language.
QImage diskImageBackground();

}  // namespace fleetwise
