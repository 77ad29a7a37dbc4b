#pragma once

#include <QGuiApplication>

namespace fleetwise {

/// There windows can neither keep themselves above others nor open popups without a parent.
inline bool isWayland() {
    return QGuiApplication::platformName().startsWith("wayland");
}

}  // namespace fleetwise
