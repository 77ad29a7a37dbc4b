#pragma once

#include <QWidget>

namespace fleetwise {

/// How far an introduction has come: a dot for each step, the present one drawn long.
class StepDots final : public QWidget {
    Q_OBJECT

public:
    /// `count` steps, of which the first is the present one.
    explicit StepDots(int count, QWidget* parent = nullptr);

    void setStep(int step);  ///< from 0 on

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const int count;
    int current = 0;
};

}  // namespace fleetwise
