#pragma once

#include <QCheckBox>

namespace fleetwise {

/// A check box drawn as a switch. Its text is for screen readers only: the row beside it says what
/// it switches.
class SwitchBox final : public QCheckBox {
    Q_OBJECT

public:
    explicit SwitchBox(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace fleetwise
