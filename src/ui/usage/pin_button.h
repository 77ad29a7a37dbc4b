#pragma once

#include "ui/base/chip_button.h"

namespace fleetwise {

/// A chip with a pin on it: whether a window stays above all others.
class PinButton final : public ChipButton {
    Q_OBJECT

public:
    explicit PinButton(QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace fleetwise
