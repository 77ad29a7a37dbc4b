#pragma once

#include <QToolButton>

namespace fleetwise {

/// A button that is on or off, and shows plainly which.
class ChipButton : public QToolButton {
    Q_OBJECT

public:
    explicit ChipButton(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace fleetwise
