#pragma once

#include <QWidget>

namespace fleetwise {

/// A drawing as high as three lines of the text beside it.
class OnboardingDrawing : public QWidget {
    Q_OBJECT

public:
    explicit OnboardingDrawing(QWidget* parent = nullptr);

    QSize sizeHint() const override;
};

/// The mark as it stands in the tray while sessions work and one waits.
class ExampleMark final : public OnboardingDrawing {
    Q_OBJECT

public:
    using OnboardingDrawing::OnboardingDrawing;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// The program's own icon.
class ProgramIcon final : public OnboardingDrawing {
    Q_OBJECT

public:
    using OnboardingDrawing::OnboardingDrawing;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace fleetwise
