#pragma once

#include <QWidget>

namespace fleetwise {

/// A path with what stands there above it, and a button that copies it.
class PathRow final : public QWidget {
    Q_OBJECT

public:
    PathRow(const QString& purpose, const QString& path, QWidget* parent = nullptr);
};

}  // namespace fleetwise
