#pragma once

#include <QLabel>

namespace fleetwise {

/// As much of a text as fits: of parts with " · " between them the last ones are left out, and
/// what is too long even so ends with "…".
QString fittingText(const QString& text, const QFontMetrics& metrics, int width);

/// One line of plain text that may be narrower than it asks for, and then is cut as fittingText
/// does.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

    /// The part that is left out last.
    QString firstPart() const;
};

}  // namespace fleetwise
