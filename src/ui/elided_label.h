#pragma once

#include <QLabel>

namespace fleetwise {

/// One line of plain text that may be narrower than it asks for. Of parts with " · " between them
/// it then leaves out the last ones, and what is too long even so ends with "…".
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

    /// The part that is left out last.
    QString firstPart() const;

private:
    QString fittingText(int width) const;
};

}  // namespace fleetwise
