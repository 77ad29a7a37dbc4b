#pragma once

#include <QLineEdit>

namespace fleetwise {

/// A line edit whose edge can be seen on light and dark grounds alike.
class SearchField final : public QLineEdit {
    Q_OBJECT

public:
    explicit SearchField(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace fleetwise
